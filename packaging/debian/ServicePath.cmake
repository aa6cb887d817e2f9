# Runs when the files of a package stand in their staging folder: the service's program is where the
# package will put it.
file(GLOB_RECURSE services "${CPACK_TEMPORARY_DIRECTORY}/*/com.kestrova.Vellumine.service")
foreach(service IN LISTS services)
    file(READ "${service}" text)
    string(REGEX REPLACE "Exec=[^\n]*/bin/" "Exec=${CPACK_PACKAGING_INSTALL_PREFIX}/bin/" text "${text}")
    file(WRITE "${service}" "${text}")
endforeach()
