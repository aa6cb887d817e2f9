ResultsNine {
    width: 720
}
