import Vellumine

// The row's button that shows the output in the file manager.
SquareButton {
    tone: KestrovaTheme.cream
    symbolColor: KestrovaTheme.creamMuted
    pressedOpacity: 0.3
    restingOpacity: 0.08
}
