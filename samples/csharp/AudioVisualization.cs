// The controls as .NET sees them, without a reference to their type library: the shared interface, the level meter as a
// Windows Forms control, and an object that hands a block of samples to SendAudioData.

using System;
using System.Runtime.InteropServices;
using System.Windows.Forms;

/// What all three controls share. "Dual" leaves slots 0 to 6 to IDispatch, so that _OnTimer is slot 7.
[ComImport, Guid("4AF266BD-950A-4620-B390-00288767A1F5"), InterfaceType(ComInterfaceType.InterfaceIsDual)]
public interface IAudioVisualizationTemplate
{
    void _OnTimer();
    void SendAudioData([MarshalAs(UnmanagedType.IUnknown)] object audioData);
    void Repaint();
    void SetAdditionalParam([MarshalAs(UnmanagedType.BStr)] string name, object value);
    void GetAdditionalParam([MarshalAs(UnmanagedType.BStr)] string name, ref object value);
}

/// The level meter on a form. Properties go through its dispatch interface: meter.Properties.LineCount = 40.
/// With "62d89c1c-1c5b-467c-944f-f822cb0d6278" it is the view, with "2f06e1aa-c0f0-488c-a6dd-799053ca7140" the analyser.
public sealed class LevelMeter : AxHost
{
    public LevelMeter() : base("e9992e04-5743-40c9-af9d-826530a45f53")
    {
    }

    public dynamic Properties
    {
        get { return GetOcx(); }
    }

    public void Send(IAudioFrameData block)
    {
        ((IAudioVisualizationTemplate)GetOcx()).SendAudioData(block);
    }
}

/// What SendAudioData asks for. The controls call slots 10 to 12, 33 and 34 and none of those between.
[ComVisible(true), Guid("9B7FEC49-99A8-4FEF-A9E2-38E1ABC874DB"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
public interface IAudioFrameData
{
    [PreserveSig] int Slot3();
    [PreserveSig] int Slot4();
    [PreserveSig] int Slot5();
    [PreserveSig] int Slot6();
    [PreserveSig] int Slot7();
    [PreserveSig] int Slot8();
    [PreserveSig] int Slot9();
    [PreserveSig] int GetBuffer(out IntPtr buffer);
    [PreserveSig] int GetBufferSize(out int bytes);
    [PreserveSig] int GetDataSize(out int bytes);
    [PreserveSig] int Slot13();
    [PreserveSig] int Slot14();
    [PreserveSig] int Slot15();
    [PreserveSig] int Slot16();
    [PreserveSig] int Slot17();
    [PreserveSig] int Slot18();
    [PreserveSig] int Slot19();
    [PreserveSig] int Slot20();
    [PreserveSig] int Slot21();
    [PreserveSig] int Slot22();
    [PreserveSig] int Slot23();
    [PreserveSig] int Slot24();
    [PreserveSig] int Slot25();
    [PreserveSig] int Slot26();
    [PreserveSig] int Slot27();
    [PreserveSig] int Slot28();
    [PreserveSig] int Slot29();
    [PreserveSig] int Slot30();
    [PreserveSig] int Slot31();
    [PreserveSig] int Slot32();
    [PreserveSig] int GetFormat(out IntPtr format);
    [PreserveSig] int GetFormatSize(out int bytes);
}

/// A block of 16-bit samples, the channels of a frame side by side. The array is pinned until Dispose: it has to stay
/// where it is until SendAudioData has returned. None of the methods fails: a failure would leave the 64-bit
/// SendAudioData as a C++ exception, which .NET cannot catch.
[ComVisible(true), ClassInterface(ClassInterfaceType.None)]
public sealed class AudioFrames : IAudioFrameData, IDisposable
{
    const int Ok = 0;
    const int NotImplemented = unchecked((int)0x80004001);

    readonly int bytes;
    GCHandle samples;
    GCHandle format;

    public AudioFrames(short[] interleaved, int channels, int sampleRateHz)
    {
        bytes = interleaved.Length * sizeof(short);
        samples = GCHandle.Alloc(interleaved, GCHandleType.Pinned);
        format = GCHandle.Alloc(HeaderOf(channels, sampleRateHz), GCHandleType.Pinned);
    }

    /// The standard wave format header of integer PCM, the only kind that the controls read: nine words of 16 bits.
    static short[] HeaderOf(int channels, int sampleRateHz)
    {
        int bytesPerSecond = sampleRateHz * channels * sizeof(short);
        return new[]
        {
            (short)1, (short)channels, unchecked((short)sampleRateHz), (short)(sampleRateHz >> 16),
            unchecked((short)bytesPerSecond), (short)(bytesPerSecond >> 16), (short)(channels * sizeof(short)), (short)16,
            (short)0
        };
    }

    public int GetBuffer(out IntPtr buffer)
    {
        buffer = samples.AddrOfPinnedObject();
        return Ok;
    }

    public int GetBufferSize(out int size)
    {
        size = bytes;
        return Ok;
    }

    public int GetDataSize(out int size)
    {
        size = bytes;
        return Ok;
    }

    public int GetFormat(out IntPtr header)
    {
        header = format.AddrOfPinnedObject();
        return Ok;
    }

    public int GetFormatSize(out int size)
    {
        size = 18;
        return Ok;
    }

    public void Dispose()
    {
        if (samples.IsAllocated) samples.Free();
        if (format.IsAllocated) format.Free();
    }

    int IAudioFrameData.Slot3() { return NotImplemented; }
    int IAudioFrameData.Slot4() { return NotImplemented; }
    int IAudioFrameData.Slot5() { return NotImplemented; }
    int IAudioFrameData.Slot6() { return NotImplemented; }
    int IAudioFrameData.Slot7() { return NotImplemented; }
    int IAudioFrameData.Slot8() { return NotImplemented; }
    int IAudioFrameData.Slot9() { return NotImplemented; }
    int IAudioFrameData.Slot13() { return NotImplemented; }
    int IAudioFrameData.Slot14() { return NotImplemented; }
    int IAudioFrameData.Slot15() { return NotImplemented; }
    int IAudioFrameData.Slot16() { return NotImplemented; }
    int IAudioFrameData.Slot17() { return NotImplemented; }
    int IAudioFrameData.Slot18() { return NotImplemented; }
    int IAudioFrameData.Slot19() { return NotImplemented; }
    int IAudioFrameData.Slot20() { return NotImplemented; }
    int IAudioFrameData.Slot21() { return NotImplemented; }
    int IAudioFrameData.Slot22() { return NotImplemented; }
    int IAudioFrameData.Slot23() { return NotImplemented; }
    int IAudioFrameData.Slot24() { return NotImplemented; }
    int IAudioFrameData.Slot25() { return NotImplemented; }
    int IAudioFrameData.Slot26() { return NotImplemented; }
    int IAudioFrameData.Slot27() { return NotImplemented; }
    int IAudioFrameData.Slot28() { return NotImplemented; }
    int IAudioFrameData.Slot29() { return NotImplemented; }
    int IAudioFrameData.Slot30() { return NotImplemented; }
    int IAudioFrameData.Slot31() { return NotImplemented; }
    int IAudioFrameData.Slot32() { return NotImplemented; }
}
