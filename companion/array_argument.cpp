#include "companion/array_argument.h"

#include <oleauto.h>
#include <wrl/client.h>

#include <cmath>
#include <optional>
#include <string>

#include "companion/failure.h"
#include "wave/pcm_samples.h"

namespace av::companion {
namespace {

using Microsoft::WRL::ComPtr;

/// A VARIANT that owns what it holds.
class Value : public VARIANT {
 public:
  Value() noexcept { VariantInit(this); }
  ~Value() { VariantClear(this); }
  Value(const Value&) = delete;
  Value& operator=(const Value&) = delete;
};

Failure noArray() { return badArgument(L"an array of numbers is wanted."); }

Failure noNumber(std::size_t index) { return badArgument(L"element " + std::to_wstring(index) + L" is no number."); }

/// What a VARIANT that refers to another one means.
const VARIANT& dereferenced(const VARIANT& value) noexcept {
  const bool refers = V_VT(&value) == (VT_BYREF | VT_VARIANT) && V_VARIANTREF(&value);
  return refers ? *V_VARIANTREF(&value) : value;  // which cannot refer any further
}

template <class Number>
double numberAt(const void* elements, std::size_t index) noexcept {
  return static_cast<double>(static_cast<const Number*>(elements)[index]);
}

/// Element `index` of an array of plain numbers; nothing for a type that is none.
std::optional<double> plainNumberAt(VARTYPE type, const void* elements, std::size_t index) noexcept {
  switch (type) {
    case VT_I1: return numberAt<std::int8_t>(elements, index);
    case VT_UI1: return numberAt<std::uint8_t>(elements, index);
    case VT_I2: return numberAt<std::int16_t>(elements, index);
    case VT_UI2: return numberAt<std::uint16_t>(elements, index);
    case VT_I4:
    case VT_INT: return numberAt<std::int32_t>(elements, index);
    case VT_UI4:
    case VT_UINT: return numberAt<std::uint32_t>(elements, index);
    case VT_I8: return numberAt<std::int64_t>(elements, index);
    case VT_UI8: return numberAt<std::uint64_t>(elements, index);
    case VT_R4: return numberAt<float>(elements, index);
    case VT_R8: return numberAt<double>(elements, index);
    case VT_CY: return numberAt<std::int64_t>(elements, index) / 10000;
    default: return std::nullopt;
  }
}

/// The number that a VARIANT holds or refers to.
std::optional<double> numberIn(const VARIANT& argument) noexcept {
  const VARIANT& value = dereferenced(argument);
  const VARTYPE type = V_VT(&value);
  if (type == VT_EMPTY) return 0;
  const auto plainType = static_cast<VARTYPE>(type & ~VT_BYREF);
  if (plainType == VT_DECIMAL) {
    Value converted;
    if (FAILED(VariantChangeType(&converted, const_cast<VARIANT*>(&value), 0, VT_R8))) return std::nullopt;
    return V_R8(&converted);
  }
  if (!(type & VT_BYREF)) return plainNumberAt(type, &V_I4(&value), 0);
  return V_BYREF(&value) ? plainNumberAt(plainType, V_BYREF(&value), 0) : std::nullopt;
}

/// The elements of a safe array, held in memory for as long as the object lives.
class Elements {
 public:
  Elements(SAFEARRAY* array, VARTYPE statedType) : m_array(array) {
    if (SafeArrayGetDim(array) > 1) throw badArgument(L"the array has several dimensions; one is wanted.");
    if (FAILED(SafeArrayGetVartype(array, &m_type))) m_type = statedType;
    LONG first = 0, last = -1;
    if (FAILED(SafeArrayGetLBound(array, 1, &first)) || FAILED(SafeArrayGetUBound(array, 1, &last)) ||
        FAILED(SafeArrayAccessData(array, &m_data)))
      throw noArray();
    const LONGLONG count = static_cast<LONGLONG>(last) - first + 1;
    m_count = count > 0 ? static_cast<std::size_t>(count) : 0;
  }
  ~Elements() { SafeArrayUnaccessData(m_array); }
  Elements(const Elements&) = delete;
  Elements& operator=(const Elements&) = delete;

  [[nodiscard]] VARTYPE type() const noexcept { return m_type; }
  [[nodiscard]] std::size_t count() const noexcept { return m_count; }
  [[nodiscard]] const void* data() const noexcept { return m_data; }
  [[nodiscard]] double number(std::size_t index) const {
    const auto number = m_type == VT_VARIANT ? numberIn(static_cast<const VARIANT*>(m_data)[index])
                                             : plainNumberAt(m_type, m_data, index);
    if (!number) throw noNumber(index);
    return *number;
  }

 private:
  SAFEARRAY* m_array;
  VARTYPE m_type = VT_EMPTY;
  void* m_data = nullptr;
  std::size_t m_count = 0;
};

/// A member of an object by its name; nothing where it has none.
std::optional<double> numberNamed(IDispatch& object, std::wstring name) {
  LPOLESTR names = name.data();
  DISPID id = DISPID_UNKNOWN;
  if (FAILED(object.GetIDsOfNames(IID_NULL, &names, 1, LOCALE_NEUTRAL, &id))) return std::nullopt;
  DISPPARAMS none = {};
  Value value;
  if (FAILED(object.Invoke(id, IID_NULL, LOCALE_NEUTRAL, DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr)))
    return std::nullopt;
  if (V_VT(&value) == VT_EMPTY) return std::nullopt;  // undefined
  return numberIn(value);
}

std::vector<double> numbersOfObject(IDispatch* object) {
  if (!object) throw noArray();
  const ComPtr<IDispatch> held = object;  // its methods may let go of it
  const auto length = numberNamed(*object, L"length");
  if (!length || !(*length >= 0) || *length != std::floor(*length)) throw noArray();
  // Each element costs two calls: what cannot fit is refused before them and not after minutes.
  if (*length > wave::mostBlockBytes) throw badArgument(L"a block holds at most 2 GB.");
  std::vector<double> numbers;
  for (std::size_t index = 0; static_cast<double>(index) < *length; ++index) {
    const auto number = numberNamed(*object, std::to_wstring(index));
    if (!number) throw noNumber(index);
    numbers.push_back(*number);
  }
  return numbers;
}

/// The safe array of a VARIANT; nothing where it is none.
SAFEARRAY* arrayIn(const VARIANT& value) noexcept {
  if (!(V_VT(&value) & VT_ARRAY)) return nullptr;
  if (!(V_VT(&value) & VT_BYREF)) return V_ARRAY(&value);
  return V_ARRAYREF(&value) ? *V_ARRAYREF(&value) : nullptr;
}

IDispatch* objectIn(const VARIANT& value) noexcept {
  if (V_VT(&value) == VT_DISPATCH) return V_DISPATCH(&value);
  if (V_VT(&value) == (VT_DISPATCH | VT_BYREF) && V_DISPATCHREF(&value)) return *V_DISPATCHREF(&value);
  return nullptr;
}

}  // namespace

std::vector<double> numbersOf(const VARIANT& argument) {
  const VARIANT& value = dereferenced(argument);
  SAFEARRAY* const array = arrayIn(value);
  if (!array) return numbersOfObject(objectIn(value));
  const Elements elements(array, static_cast<VARTYPE>(V_VT(&value) & VT_TYPEMASK));
  std::vector<double> numbers;
  numbers.reserve(elements.count());
  for (std::size_t index = 0; index < elements.count(); ++index) numbers.push_back(elements.number(index));
  return numbers;
}

std::vector<std::uint8_t> bytesOf(const VARIANT& argument) {
  const VARIANT& value = dereferenced(argument);
  if (SAFEARRAY* const array = arrayIn(value)) {
    const Elements elements(array, static_cast<VARTYPE>(V_VT(&value) & VT_TYPEMASK));
    const auto* const bytes = static_cast<const std::uint8_t*>(elements.data());
    if (elements.type() == VT_UI1) return {bytes, bytes + elements.count()};
  }
  std::vector<std::uint8_t> bytes;
  for (const double number : numbersOf(argument)) {
    if (!(number >= 0 && number <= 255) || number != std::floor(number))
      throw badArgument(L"element " + std::to_wstring(bytes.size()) + L" is no byte: it must be 0 to 255.");
    bytes.push_back(static_cast<std::uint8_t>(number));
  }
  return bytes;
}

}  // namespace av::companion
