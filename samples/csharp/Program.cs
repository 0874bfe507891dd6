// The level meter on a form, with a tone that swells.

using System;
using System.Drawing;
using System.Windows.Forms;

sealed class MeterForm : Form
{
    const int SampleRateHz = 44100;

    readonly LevelMeter meter = new LevelMeter();
    readonly Timer timer = new Timer();
    readonly short[] samples = new short[1024];  // 23 ms
    double seconds;

    MeterForm()
    {
        Text = "Swell";
        ClientSize = new Size(640, 360);
        meter.BeginInit();
        meter.Dock = DockStyle.Fill;
        Controls.Add(meter);
        meter.EndInit();
        timer.Interval = 23;
        timer.Tick += delegate { SendBlock(); };
    }

    protected override void OnLoad(EventArgs e)
    {
        base.OnLoad(e);
        meter.Properties.LineCount = 40;
        timer.Start();
    }

    protected override void OnFormClosing(FormClosingEventArgs e)
    {
        timer.Stop();
        base.OnFormClosing(e);
    }

    // A saw of 440 Hz with all its harmonics, four seconds from one swell to the next.
    void SendBlock()
    {
        for (int i = 0; i < samples.Length; ++i)
        {
            double saw = seconds * 440 % 1 * 2 - 1;
            samples[i] = (short)(saw * 16000 * (1 - Math.Cos(seconds * Math.PI / 2)));
            seconds += 1.0 / SampleRateHz;
        }
        using (var block = new AudioFrames(samples, 1, SampleRateHz))
        {
            meter.Send(block);
        }
    }

    [STAThread]
    static void Main()
    {
        Application.EnableVisualStyles();
        Application.Run(new MeterForm());
    }
}
