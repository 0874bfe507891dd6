// The spectrum in the middle of a WAV file, as a PNG file:  cscript //nologo spectrum.js music.wav spectrum.png
var wave = new ActiveXObject("AudioBlocks.WaveFile");
wave.Open(WScript.Arguments(0));
wave.Position = Math.floor(wave.Frames / 2);
var picture = new ActiveXObject("AudioBlocks.Snapshot");
var view = picture.CreateControl(1);
view.VisualizationType = 2;
view.SendAudioData(wave.NextBlock(view.FFTWindowSize));
picture.Save(WScript.Arguments(1));
