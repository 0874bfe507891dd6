#pragma once
// A stand-in for the Windows SDK's headers as far as the generated headers ask for them, with the SDK's own ways for
// Microsoft's compiler: identifiers as attributes of types, no __CRT_UUID_DECL. Nothing of it is ever linked.

#if !defined(_MSC_VER) || defined(__MINGW32__)
#error "only for Microsoft's compiler, or one that takes its place"
#endif

#ifdef __cplusplus
#define EXTERN_C extern "C"
#else
#define EXTERN_C extern
#endif

#define interface struct
#define DECLSPEC_UUID(text) __declspec(uuid(text))
#define DECLSPEC_SELECTANY __declspec(selectany)
#define MIDL_INTERFACE(text) struct DECLSPEC_UUID(text) __declspec(novtable)
#define STDMETHODCALLTYPE __stdcall
#define BEGIN_INTERFACE
#define END_INTERFACE
#define CONST_VTBL
#define FORCEINLINE __forceinline

#ifndef __cplusplus
typedef unsigned short wchar_t;
#endif
typedef long HRESULT, LONG;
typedef unsigned int UINT;
typedef unsigned long ULONG, LCID, OLE_COLOR;
typedef unsigned short WORD, VARTYPE;
typedef short VARIANT_BOOL;
typedef long DISPID;
typedef wchar_t *BSTR, *LPOLESTR;

typedef struct _GUID {
  unsigned long Data1;
  unsigned short Data2, Data3;
  unsigned char Data4[8];
} GUID, IID, CLSID;

#ifdef __cplusplus
#define REFIID const IID&
#define REFGUID const GUID&
#else
#define REFIID const IID*
#define REFGUID const GUID*
#endif
#define DEFINE_GUID(name, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8) EXTERN_C const GUID name

typedef struct tagVARIANT {
  VARTYPE vt;
  WORD reserved[3];
  void* value[2];
} VARIANT;
typedef struct tagDISPPARAMS DISPPARAMS;
typedef struct tagEXCEPINFO EXCEPINFO;
typedef struct ITypeInfo ITypeInfo;

#ifdef __cplusplus
MIDL_INTERFACE("00000000-0000-0000-C000-000000000046")
IUnknown {
  virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) = 0;
  virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
  virtual ULONG STDMETHODCALLTYPE Release() = 0;
};

MIDL_INTERFACE("00020400-0000-0000-C000-000000000046")
IDispatch : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) = 0;
  virtual HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) = 0;
};

MIDL_INTERFACE("BEF6E003-A874-101A-8BBA-00AA00300CAB")
IFontDisp : public IDispatch{};
#else
typedef struct IUnknown IUnknown;
typedef struct IDispatch IDispatch;
typedef struct IFontDisp IFontDisp;
#endif
