# Saves the spectrum of a WAV file once a second as PNG files:  .\Save-Spectra.ps1 music.wav
# Needs the registered library and its companion AudioBlocks.dll, both of PowerShell's own width (usually 64 bits).
param(
    [Parameter(Mandatory = $true)] [string] $Wave,
    [string] $Folder = '.'
)
$ErrorActionPreference = 'Stop'

$file = New-Object -ComObject AudioBlocks.WaveFile
$file.Open((Resolve-Path -LiteralPath $Wave).ProviderPath)
$picture = New-Object -ComObject AudioBlocks.Snapshot
$picture.Width = 640
$picture.Height = 360
$view = $picture.CreateControl(1)
$view.VisualizationType = 2      # a spectrum
$view.VisualizationSmooth = $false  # of each block alone

$target = (Resolve-Path -LiteralPath $Folder).ProviderPath
for ($second = 0; $second -lt $file.Duration; $second++) {
    $file.Position = $second * $file.SampleRate
    $block = $file.NextBlock($view.FFTWindowSize)
    if ($null -eq $block -or $block.Frames -lt $view.FFTWindowSize) { break }
    $view.SendAudioData($block)
    $path = Join-Path $target ('spectrum-{0:d4}.png' -f $second)
    $picture.Save($path)
    $path
}
