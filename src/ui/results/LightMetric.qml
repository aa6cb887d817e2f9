import Vellumine

// The same for light backgrounds.
SummaryMetric {
    titleColor: KestrovaTheme.copperStrong
    valueColor: KestrovaTheme.ink
    valueSize: 14
}
