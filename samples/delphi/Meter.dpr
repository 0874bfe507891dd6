program Meter;

// The level meter in a window of the system's own container class, with a tone that swells, until the window is closed.

{$IFDEF FPC}{$MODE DELPHI}{$ENDIF}
{$APPTYPE CONSOLE}

uses
  Windows, Messages, ActiveX, AudioVisualization in 'AudioVisualization.pas';

const
  SampleRateHz = 44100;
  BlockFrames = 1024;  // 23 ms

function AtlAxWinInit: BOOL; stdcall; external 'atl.dll';
function AtlAxGetControl(Window: HWND; out Control: IUnknown): HResult; stdcall; external 'atl.dll';

// A saw of 440 Hz with all its harmonics, four seconds from one swell to the next.
procedure SendBlock(const Control: IAudioVisualizationTemplate; var Seconds: Double);
var
  Samples: array [0 .. BlockFrames - 1] of SmallInt;
  Block: IUnknown;
  I: Integer;
begin
  for I := 0 to BlockFrames - 1 do
  begin
    Samples[I] := Round((Frac(Seconds * 440) * 2 - 1) * 16000 * (1 - Cos(Seconds * 1.5708)));
    Seconds := Seconds + 1 / SampleRateHz;
  end;
  Block := TAudioFrames.Create(@Samples[0], BlockFrames, 1, SampleRateHz) as IAudioFrameData;
  Control.SendAudioData(Block);
end;

procedure DispatchMessages;
var
  Msg: TMsg;
begin
  while PeekMessage(Msg, 0, 0, 0, PM_REMOVE) do  // the meter's ticks arrive as messages
  begin
    TranslateMessage(Msg);
    DispatchMessage(Msg);
  end;
end;

procedure Run;
var
  Window: HWND;
  Unknown: IUnknown;
  Meter: IAudioVisualization4Type2;
  Seconds: Double;
begin
  AtlAxWinInit;
  // The title of such a window names the control that it makes and holds.
  Window := CreateWindowEx(0, 'AtlAxWin', '{E9992E04-5743-40C9-AF9D-826530A45F53}', WS_OVERLAPPEDWINDOW or WS_VISIBLE,
    Integer(CW_USEDEFAULT), Integer(CW_USEDEFAULT), 640, 360, 0, 0, HInstance, nil);
  if (Window = 0) or Failed(AtlAxGetControl(Window, Unknown)) or
    Failed(Unknown.QueryInterface(IAudioVisualization4Type2, Meter)) then
  begin
    WriteLn('There is no level meter: is the library registered?');
    Halt(1);
  end;
  SetWindowText(Window, 'Swell');
  Meter.put_LineCount(40);
  Seconds := 0;
  while IsWindow(Window) do
  begin
    SendBlock(Meter, Seconds);
    Sleep(20);
    DispatchMessages;
  end;
end;

begin
  OleInitialize(nil);
  Run;  // every reference is gone when it returns
  OleUninitialize;
end.
