# Shows that CheckIncludes.cmake accepts what is allowed and refuses what is not, on trees of one
# file each:
#     cmake -D SCRATCH=folder -P CheckIncludesTest.cmake
cmake_minimum_required(VERSION 3.25)

set(failures 0)

# expect(VERDICT FILE CONTENT): the check of a tree with that file alone accepts it, or refuses it
# with a text that holds VERDICT.
function(expect verdict file content)
    file(REMOVE_RECURSE "${SCRATCH}")
    file(WRITE "${SCRATCH}/src/${file}" "${content}\n")
    execute_process(
        COMMAND "${CMAKE_COMMAND}" -D "SOURCE_FOLDER=${SCRATCH}/src"
            -P "${CMAKE_CURRENT_LIST_DIR}/CheckIncludes.cmake"
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    string(FIND "${output}" "${verdict}" place)
    if(verdict STREQUAL "accepted")
        set(right "${result}")
    elseif(NOT result EQUAL 0 AND place GREATER -1)
        set(right 0)
    else()
        set(right 1)
    endif()
    if(NOT right EQUAL 0)
        message(NOTICE "Expected \"${verdict}\" for ${file} with ${content}\nbut it said: ${output}")
        math(EXPR failures "${failures} + 1")
        set(failures ${failures} PARENT_SCOPE)
    endif()
endfunction()

expect(accepted imaging/codecs/Png.cpp "#include \"imaging/Image.h\"\n#include <png.h>")
expect(accepted core/Settings.h "#include \"platform/Trash.h\"\n#include <QString>")
expect(accepted pipeline/Optimiser.cpp "#include \"core/Settings.h\"\n#include \"imaging/Image.h\"")
expect(accepted batch/Model.cpp "#include \"stats/Store.h\"\n#include \"Model.moc\"")
expect(accepted app/main.cpp "#include \"ui/View.h\"\n#include \"update/Check.h\"")
expect(accepted cli/main.cpp "#include \"batch/Model.h\"\n#include \"core/Settings.h\"")

expect("imaging may not see core" imaging/Image.cpp "#include \"core/Settings.h\"")
expect("imaging may not see platform" imaging/Image.cpp "#include \"platform/Trash.h\"")
expect("platform may not see imaging" platform/Trash.cpp "#include \"imaging/Image.h\"")
expect("core may not see pipeline" core/Settings.h "#include \"pipeline/Optimiser.h\"")
expect("core may not see stats" core/Settings.h "  #  include \"stats/Store.h\"")
expect("pipeline may not see batch" pipeline/Optimiser.h "#include \"batch/Model.h\"")
expect("batch may not see ui" batch/Model.h "#include \"ui/View.h\"")
expect("batch may not see update" batch/Model.h "#include \"update/Check.h\"")
expect("stats may not see imaging" stats/Store.h "#include \"imaging/Image.h\"")
expect("update may not see stats" update/Check.h "#include \"stats/Store.h\"")
expect("ui may not see app" ui/View.h "#include \"app/main.h\"")
expect("cli may not see ui" cli/main.cpp "#include \"ui/View.h\"")
expect("cli may not see update" cli/main.cpp "#include <update/Check.h>")

expect("imaging knows no Qt" imaging/Image.h "#include <QString>")
expect("imaging knows no Qt" imaging/Image.h "#include <QtCore/QString>")
expect("imaging knows no Qt" imaging/Image.h "#include <qglobal.h>")
expect("is not relative" core/a/Settings.h "#include \"../Other.h\"")
expect("is no path from" core/Settings.h "#include \"Other.h\"")
expect("stand in quotes" core/Settings.h "#include <core/Other.h>")
expect("has no rule" helpers/Text.h "#include <string>")
# an unbalanced bracket earlier in the file hides nothing
expect("core may not see batch" core/Text.cpp "char open = '[';\n#include \"batch/Model.h\"")
expect("no source file" core/Text.txt "nothing")

file(REMOVE_RECURSE "${SCRATCH}")
if(failures GREATER 0)
    message(FATAL_ERROR "${failures} expectations failed")
endif()
