' The spectrum in the middle of a WAV file, as a PNG file:  cscript //nologo spectrum.vbs music.wav spectrum.png
Set wave = CreateObject("AudioBlocks.WaveFile")
wave.Open WScript.Arguments(0)
wave.Position = Int(wave.Frames / 2)
Set picture = CreateObject("AudioBlocks.Snapshot")
Set view = picture.CreateControl(1)
view.VisualizationType = 2
view.SendAudioData wave.NextBlock(view.FFTWindowSize)
picture.Save WScript.Arguments(1)
