import Vellumine

// The way to the maker's donation page.
OutsideLink {
    address: ProductInfo.donationUrl
    helpText: ProductInfo.donationHelpText
    symbol: "cup.and.saucer.fill"
    text: qsTr("Buy me a coffee")
}
