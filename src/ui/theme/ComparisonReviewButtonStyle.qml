import Vellumine

// The row's button that opens the comparison.
SquareButton {
    tone: KestrovaTheme.copperBright
    symbolColor: KestrovaTheme.cream
}
