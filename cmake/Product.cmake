# What the product is called by, and the only addresses that it knows: written into one header.

set(VELLUMINE_HOME_PAGE_URL "https://vellumine.kestrova.example/" CACHE STRING
    "Home page of the product, where the update check finds the latest version")
set(VELLUMINE_MAKER_URL "https://kestrova.example/" CACHE STRING
    "Web site of the maker")
set(VELLUMINE_DONATION_URL "https://kestrova.example/donate" CACHE STRING
    "Where users can give something for the product")
set(VELLUMINE_DOWNLOAD_URL "https://vellumine.kestrova.example/download" CACHE STRING
    "Where users get a newer version")

foreach(address HOME_PAGE MAKER DONATION DOWNLOAD)
    if(NOT VELLUMINE_${address}_URL MATCHES "^https://[^/\"\\]+[^\"\\]*$")
        message(FATAL_ERROR
            "VELLUMINE_${address}_URL is no https address: \"${VELLUMINE_${address}_URL}\"")
    endif()
endforeach()

set(VELLUMINE_GENERATED_FOLDER "${CMAKE_BINARY_DIR}/generated")
configure_file("${CMAKE_SOURCE_DIR}/src/core/Product.h.in"
    "${VELLUMINE_GENERATED_FOLDER}/core/Product.h" @ONLY)
