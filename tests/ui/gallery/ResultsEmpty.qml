ResultsNine {
    count: 0
    height: 120
}
