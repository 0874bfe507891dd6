"""The level meter in a window of the system's own container class, with a tone that swells, until the window is closed.

Needs comtypes and the registered library, both of Python's own width (32 or 64 bits).
"""

import array
import ctypes
import math
import sys
import time
from ctypes import POINTER, byref, c_int, c_long, c_ulong, c_void_p, wintypes

import comtypes
from comtypes import COMMETHOD, GUID, HRESULT, STDMETHOD, COMObject, IUnknown
from comtypes.automation import IDispatch

SAMPLE_RATE_HZ = 44100
BLOCK_FRAMES = 1024  # 23 ms
LEVEL_METER = "{E9992E04-5743-40C9-AF9D-826530A45F53}"


class IAudioVisualizationTemplate(IDispatch):
    """What all three controls share; slots 0 to 6 are those of IDispatch."""

    _iid_ = GUID("{4AF266BD-950A-4620-B390-00288767A1F5}")
    _methods_ = [
        COMMETHOD([], HRESULT, "_OnTimer"),
        COMMETHOD([], HRESULT, "SendAudioData", (["in"], POINTER(IUnknown), "data")),
        COMMETHOD([], HRESULT, "Repaint"),
    ]


class IAudioFrameData(IUnknown):
    """What SendAudioData asks for: the controls call slots 10 to 12, 33 and 34 and none of those between."""

    _iid_ = GUID("{9B7FEC49-99A8-4FEF-A9E2-38E1ABC874DB}")
    _methods_ = (
        [STDMETHOD(HRESULT, f"Slot{slot}") for slot in range(3, 10)]
        + [
            STDMETHOD(HRESULT, "GetBuffer", [POINTER(c_void_p)]),
            STDMETHOD(HRESULT, "GetBufferSize", [POINTER(c_long)]),
            STDMETHOD(HRESULT, "GetDataSize", [POINTER(c_long)]),
        ]
        + [STDMETHOD(HRESULT, f"Slot{slot}") for slot in range(13, 33)]
        + [
            STDMETHOD(HRESULT, "GetFormat", [POINTER(c_void_p)]),
            STDMETHOD(HRESULT, "GetFormatSize", [POINTER(c_ulong)]),
        ]
    )


class WaveFormat(ctypes.LittleEndianStructure):
    """The standard wave format header, 18 bytes."""

    _pack_ = 1
    _fields_ = [
        ("format_tag", ctypes.c_uint16),
        ("channels", ctypes.c_uint16),
        ("sample_rate_hz", ctypes.c_uint32),
        ("bytes_per_second", ctypes.c_uint32),
        ("bytes_per_frame", ctypes.c_uint16),
        ("bits_per_sample", ctypes.c_uint16),
        ("extra_bytes", ctypes.c_uint16),
    ]


class AudioFrames(COMObject):
    """A block of 16-bit samples (an array of type "h"), the channels of a frame side by side.

    None of its methods fails: a failure would leave the 64-bit SendAudioData as a C++ exception, which ends Python.
    """

    _com_interfaces_ = [IAudioFrameData]

    def __init__(self, samples, channels, sample_rate_hz):
        super().__init__()
        frame_bytes = channels * 2
        self._samples = samples
        # Tag 1: integer PCM, the only kind that the controls read.
        self._format = WaveFormat(1, channels, sample_rate_hz, sample_rate_hz * frame_bytes, frame_bytes, 16, 0)

    def GetBuffer(self, this, buffer):
        buffer[0] = self._samples.buffer_info()[0]
        return comtypes.hresult.S_OK

    def GetBufferSize(self, this, size):
        size[0] = len(self._samples) * 2
        return comtypes.hresult.S_OK

    def GetDataSize(self, this, size):
        size[0] = len(self._samples) * 2
        return comtypes.hresult.S_OK

    def GetFormat(self, this, wave_format):
        wave_format[0] = ctypes.addressof(self._format)
        return comtypes.hresult.S_OK

    def GetFormatSize(self, this, size):
        size[0] = ctypes.sizeof(self._format)
        return comtypes.hresult.S_OK


def swell(first_frame):
    """A saw of 440 Hz with all its harmonics, four seconds from one swell to the next."""
    samples = array.array("h")
    for frame in range(first_frame, first_frame + BLOCK_FRAMES):
        seconds = frame / SAMPLE_RATE_HZ
        saw = seconds * 440 % 1 * 2 - 1
        samples.append(int(saw * 16000 * (1 - math.cos(seconds * math.pi / 2))))
    return samples


def open_meter(user32, atl):
    """A window whose title names the control that it makes and holds; (window, control)."""
    user32.CreateWindowExW.restype = wintypes.HWND
    user32.CreateWindowExW.argtypes = (
        [wintypes.DWORD, wintypes.LPCWSTR, wintypes.LPCWSTR, wintypes.DWORD]
        + [c_int] * 4
        + [wintypes.HWND, wintypes.HMENU, wintypes.HINSTANCE, wintypes.LPVOID]
    )
    atl.AtlAxGetControl.argtypes = [wintypes.HWND, POINTER(POINTER(IUnknown))]
    atl.AtlAxWinInit()
    overlapped, visible, anywhere = 0x00CF0000, 0x10000000, -0x80000000
    window = user32.CreateWindowExW(
        0, "AtlAxWin", LEVEL_METER, overlapped | visible, anywhere, anywhere, 640, 360, None, None, None, None
    )
    control = POINTER(IUnknown)()
    if not window or atl.AtlAxGetControl(window, byref(control)) < 0 or not control:
        sys.exit("There is no level meter: is the library registered?")
    user32.SetWindowTextW(wintypes.HWND(window), "Swell")
    return window, control.QueryInterface(IAudioVisualizationTemplate)


def main():
    user32, atl = ctypes.windll.user32, ctypes.windll.atl
    window, meter = open_meter(user32, atl)
    frame = 0
    message = wintypes.MSG()
    while user32.IsWindow(wintypes.HWND(window)):
        meter.SendAudioData(AudioFrames(swell(frame), 1, SAMPLE_RATE_HZ).QueryInterface(IUnknown))
        frame += BLOCK_FRAMES
        time.sleep(0.02)
        while user32.PeekMessageW(byref(message), None, 0, 0, 1):  # the meter's ticks arrive as messages
            user32.TranslateMessage(byref(message))
            user32.DispatchMessageW(byref(message))


if __name__ == "__main__":
    main()
