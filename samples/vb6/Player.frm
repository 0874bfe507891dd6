VERSION 5.00
Object = "{A864F7F5-89DD-4A12-9E3F-61C30ECC8180}#1.0#0"; "QELAudioVisualization4.dll"
Begin VB.Form Player
   Caption         =   "Spectrum"
   ClientHeight    =   5400
   ClientLeft      =   60
   ClientTop       =   345
   ClientWidth     =   9600
   LinkTopic       =   "Player"
   ScaleHeight     =   5400
   ScaleWidth      =   9600
   StartUpPosition =   3  'Windows Default
   Begin VB.Timer Clock
      Enabled         =   0   'False
      Left            =   120
      Top             =   120
   End
   Begin QELAudioVisualization4.CAudioVisualization4Type1 View
      Height          =   5400
      Left            =   0
      TabIndex        =   0
      Top             =   0
      Width           =   9600
      _ExtentX        =   16933
      _ExtentY        =   9525
   End
End
Attribute VB_Name = "Player"
Attribute VB_GlobalNameSpace = False
Attribute VB_Creatable = False
Attribute VB_PredeclaredId = True
Attribute VB_Exposed = False
Option Explicit

' Shows the spectrum of a WAV file as it goes by; the caption tells what lies under the pointer. The file is the
' program's argument. Audio comes through the companion, AudioBlocks.dll.

Private m_wave As Object

Private Sub Form_Load()
    Set m_wave = CreateObject("AudioBlocks.WaveFile")
    m_wave.Open Command$
    View.VisualizationType = 2
    Clock.Interval = 1000 * CLng(View.FFTWindowSize) \ m_wave.SampleRate
    Clock.Enabled = True
End Sub

Private Sub Clock_Timer()
    Dim block As Object
    Set block = m_wave.NextBlock(View.FFTWindowSize)
    If block Is Nothing Then
        Clock.Enabled = False
    Else
        View.SendAudioData block
    End If
End Sub

Private Sub View_MouseMove(ByVal X As Long, ByVal Y As Long, ByVal XValue As Long, ByVal YValue As Long)
    Caption = XValue & " Hz, " & YValue & " dB"
End Sub

Private Sub Form_Resize()
    If WindowState <> vbMinimized Then View.Move 0, 0, ScaleWidth, ScaleHeight
End Sub

Private Sub Form_Unload(Cancel As Integer)
    Clock.Enabled = False
End Sub
