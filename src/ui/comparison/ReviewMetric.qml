import Vellumine

// The size of one of the two pictures.
SummaryMetric { }
