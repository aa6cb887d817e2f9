import Vellumine

// The way to the maker's web site: the credit line, or where that is too long the maker's name.
OutsideLink {
    property bool compact: false

    address: ProductInfo.makerUrl
    helpText: ProductInfo.makerHelpText
    text: compact ? ProductInfo.makerName : ProductInfo.creditLine
}
