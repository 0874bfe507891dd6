unit AudioVisualization;

// The controls as Delphi and Free Pascal see them: identifiers, the shared interface, and an object that hands a block
// of samples to SendAudioData. For all properties import the type library instead, or go through IDispatch.

{$IFDEF FPC}{$MODE DELPHI}{$ENDIF}

interface

uses
  Windows, ActiveX;

const
  CLSID_SpectrumView: TGUID = '{62D89C1C-1C5B-467C-944F-F822CB0D6278}';
  CLSID_LevelMeter: TGUID = '{E9992E04-5743-40C9-AF9D-826530A45F53}';
  CLSID_SpectrumAnalyser: TGUID = '{2F06E1AA-C0F0-488C-A6DD-799053CA7140}';

type
  // The standard wave format header, 18 bytes.
  TWaveFormat = packed record
    FormatTag, Channels: Word;
    SampleRateHz, BytesPerSecond: Cardinal;
    BytesPerFrame, BitsPerSample, ExtraBytes: Word;
  end;

  // Slots 7 to 11 of each control, after those of IDispatch.
  IAudioVisualizationTemplate = interface(IDispatch)
    ['{4AF266BD-950A-4620-B390-00288767A1F5}']
    function OnTimer: HResult; stdcall;
    function SendAudioData(const Data: IUnknown): HResult; stdcall;
    function Repaint: HResult; stdcall;
    function SetAdditionalParam(const Name: WideString; Value: OleVariant): HResult; stdcall;
    function GetAdditionalParam(const Name: WideString; var Value: OleVariant): HResult; stdcall;
  end;

  // The level meter's first properties, slots 12 to 17; the others follow as the type library lists them.
  IAudioVisualization4Type2 = interface(IAudioVisualizationTemplate)
    ['{B394D7CB-9236-414C-BC2E-0DA82FE7091C}']
    function get_LineType(out Value: Integer): HResult; stdcall;
    function put_LineType(Value: Integer): HResult; stdcall;
    function get_LineInterval(out Value: Integer): HResult; stdcall;
    function put_LineInterval(Value: Integer): HResult; stdcall;
    function get_LineCount(out Value: Integer): HResult; stdcall;
    function put_LineCount(Value: Integer): HResult; stdcall;
  end;

  // What SendAudioData asks for. The controls call slots 10 to 12, 33 and 34 and none of those between.
  IAudioFrameData = interface(IUnknown)
    ['{9B7FEC49-99A8-4FEF-A9E2-38E1ABC874DB}']
    function Slot3: HResult; stdcall;
    function Slot4: HResult; stdcall;
    function Slot5: HResult; stdcall;
    function Slot6: HResult; stdcall;
    function Slot7: HResult; stdcall;
    function Slot8: HResult; stdcall;
    function Slot9: HResult; stdcall;
    function GetBuffer(out Buffer: Pointer): HResult; stdcall;
    function GetBufferSize(out Bytes: Integer): HResult; stdcall;
    function GetDataSize(out Bytes: Integer): HResult; stdcall;
    function Slot13: HResult; stdcall;
    function Slot14: HResult; stdcall;
    function Slot15: HResult; stdcall;
    function Slot16: HResult; stdcall;
    function Slot17: HResult; stdcall;
    function Slot18: HResult; stdcall;
    function Slot19: HResult; stdcall;
    function Slot20: HResult; stdcall;
    function Slot21: HResult; stdcall;
    function Slot22: HResult; stdcall;
    function Slot23: HResult; stdcall;
    function Slot24: HResult; stdcall;
    function Slot25: HResult; stdcall;
    function Slot26: HResult; stdcall;
    function Slot27: HResult; stdcall;
    function Slot28: HResult; stdcall;
    function Slot29: HResult; stdcall;
    function Slot30: HResult; stdcall;
    function Slot31: HResult; stdcall;
    function Slot32: HResult; stdcall;
    function GetFormat(out Format: Pointer): HResult; stdcall;
    function GetFormatSize(out Bytes: Cardinal): HResult; stdcall;
  end;

  // A block of 16-bit samples, the channels of a frame side by side. The memory is the caller's and has to stay until
  // SendAudioData has returned. None of its methods fails: a failure would leave the 64-bit SendAudioData as a C++
  // exception, which Delphi cannot catch.
  TAudioFrames = class(TInterfacedObject, IAudioFrameData)
  private
    FFormat: TWaveFormat;
    FSamples: Pointer;
    FBytes: Integer;
    function NotCalled: HResult; stdcall;
  public
    constructor Create(Samples: PSmallInt; Frames: Integer; Channels: Word; SampleRateHz: Cardinal);
    function IAudioFrameData.Slot3 = NotCalled;
    function IAudioFrameData.Slot4 = NotCalled;
    function IAudioFrameData.Slot5 = NotCalled;
    function IAudioFrameData.Slot6 = NotCalled;
    function IAudioFrameData.Slot7 = NotCalled;
    function IAudioFrameData.Slot8 = NotCalled;
    function IAudioFrameData.Slot9 = NotCalled;
    function GetBuffer(out Buffer: Pointer): HResult; stdcall;
    function GetBufferSize(out Bytes: Integer): HResult; stdcall;
    function GetDataSize(out Bytes: Integer): HResult; stdcall;
    function IAudioFrameData.Slot13 = NotCalled;
    function IAudioFrameData.Slot14 = NotCalled;
    function IAudioFrameData.Slot15 = NotCalled;
    function IAudioFrameData.Slot16 = NotCalled;
    function IAudioFrameData.Slot17 = NotCalled;
    function IAudioFrameData.Slot18 = NotCalled;
    function IAudioFrameData.Slot19 = NotCalled;
    function IAudioFrameData.Slot20 = NotCalled;
    function IAudioFrameData.Slot21 = NotCalled;
    function IAudioFrameData.Slot22 = NotCalled;
    function IAudioFrameData.Slot23 = NotCalled;
    function IAudioFrameData.Slot24 = NotCalled;
    function IAudioFrameData.Slot25 = NotCalled;
    function IAudioFrameData.Slot26 = NotCalled;
    function IAudioFrameData.Slot27 = NotCalled;
    function IAudioFrameData.Slot28 = NotCalled;
    function IAudioFrameData.Slot29 = NotCalled;
    function IAudioFrameData.Slot30 = NotCalled;
    function IAudioFrameData.Slot31 = NotCalled;
    function IAudioFrameData.Slot32 = NotCalled;
    function GetFormat(out Format: Pointer): HResult; stdcall;
    function GetFormatSize(out Bytes: Cardinal): HResult; stdcall;
  end;

implementation

constructor TAudioFrames.Create(Samples: PSmallInt; Frames: Integer; Channels: Word; SampleRateHz: Cardinal);
begin
  inherited Create;
  FFormat.FormatTag := 1;  // integer PCM, the only kind that the controls read
  FFormat.Channels := Channels;
  FFormat.SampleRateHz := SampleRateHz;
  FFormat.BytesPerFrame := Channels * 2;
  FFormat.BytesPerSecond := SampleRateHz * FFormat.BytesPerFrame;
  FFormat.BitsPerSample := 16;
  FSamples := Samples;
  FBytes := Frames * FFormat.BytesPerFrame;
end;

function TAudioFrames.NotCalled: HResult;
begin
  Result := E_NOTIMPL;
end;

function TAudioFrames.GetBuffer(out Buffer: Pointer): HResult;
begin
  Buffer := FSamples;
  Result := S_OK;
end;

function TAudioFrames.GetBufferSize(out Bytes: Integer): HResult;
begin
  Bytes := FBytes;
  Result := S_OK;
end;

function TAudioFrames.GetDataSize(out Bytes: Integer): HResult;
begin
  Bytes := FBytes;
  Result := S_OK;
end;

function TAudioFrames.GetFormat(out Format: Pointer): HResult;
begin
  Format := @FFormat;
  Result := S_OK;
end;

function TAudioFrames.GetFormatSize(out Bytes: Cardinal): HResult;
begin
  Bytes := SizeOf(FFormat);
  Result := S_OK;
end;

end.
