ResultsNine {
    count: 1
    height: 240
    width: 720
}
