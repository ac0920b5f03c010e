# The one place for compiler settings, and the two kinds of target there are: a library of
# models, which may link Qt6::Core (and Qt6::Network where it must) and other such libraries, and
# a QML module of views beside it.

add_library(lumaro_options INTERFACE)
target_compile_features(lumaro_options INTERFACE cxx_std_23)
target_compile_options(lumaro_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
    # GCC 12 is wrong about the frames of coroutines, and about Qt's string builder.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized -Wno-stringop-overflow>)
target_compile_definitions(lumaro_options INTERFACE
    QT_NO_CAST_FROM_ASCII
    QT_NO_CAST_TO_ASCII
    QT_NO_URL_CAST_FROM_STRING
    QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_NO_FOREACH
    QT_NO_KEYWORDS
    QT_USE_QSTRINGBUILDER
    QT_DISABLE_DEPRECATED_BEFORE=0x060400)
target_include_directories(lumaro_options INTERFACE "${CMAKE_SOURCE_DIR}")
if(LUMARO_SANITIZE)
    # Qt WebEngine's items carry no type information, which the check of virtual tables takes for
    # broken objects.
    target_compile_options(lumaro_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize=vptr -fno-sanitize-recover=undefined
        -fno-omit-frame-pointer)
    target_link_options(lumaro_options INTERFACE -fsanitize=address,undefined)
endif()
if(LUMARO_BUILD_FUZZERS)
    target_compile_options(lumaro_options INTERFACE
        -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined
        -fno-omit-frame-pointer)
    target_link_options(lumaro_options INTERFACE -fsanitize=address,undefined)
endif()

# lumaro_library(NAME SOURCES … [LINK …]): a static library of models or of an adapter.
function(lumaro_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
    add_library(${name} STATIC ${arg_SOURCES})
    target_link_libraries(${name} PUBLIC lumaro_options Qt6::Core ${arg_LINK})
endfunction()

# lumaro_qml_module(NAME URI uri [SOURCES …] [SINGLETONS …] [QML …] [RESOURCES …] [LINK …]): views
# as a static QML module. Whoever shows them links NAME and its plugin, NAMEplugin.
function(lumaro_qml_module name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "URI" "SOURCES;QML;RESOURCES;LINK;SINGLETONS")
    foreach(file IN LISTS arg_SINGLETONS)
        set_source_files_properties(${file} PROPERTIES QT_QML_SINGLETON_TYPE TRUE)
    endforeach()
    # All modules share one import path, where the QML compiler finds each other's types.
    string(REPLACE "." "/" folder "${arg_URI}")
    qt_add_qml_module(${name} STATIC
        URI ${arg_URI}
        VERSION 1.0
        RESOURCE_PREFIX /qt/qml
        OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/qml/${folder}"
        IMPORT_PATH "${CMAKE_BINARY_DIR}/qml"
        DEPENDENCIES QtQuick
        SOURCES ${arg_SOURCES}
        QML_FILES ${arg_SINGLETONS} ${arg_QML}
        RESOURCES ${arg_RESOURCES})
    # The code that the QML compiler makes is not ours to warn about.
    get_target_property(sources ${name} SOURCES)
    list(FILTER sources INCLUDE REGEX "/qmlcache/")
    set_source_files_properties(${sources} PROPERTIES COMPILE_OPTIONS -w)
    target_include_directories(${name} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
    target_link_libraries(${name} PUBLIC lumaro_options Qt6::Quick ${arg_LINK})
endfunction()

# lumaro_test(NAME SOURCES … [LINK …]): one Qt Test executable, run without a display. Tests below a
# folder that sets LUMARO_TEST_KIND to "e2e" drive real servers, libmpv or the whole application; the
# others are unit tests. Each kind is a label, and a target that builds it: unit_tests, e2e_tests.
set(LUMARO_TEST_KIND unit)
function(lumaro_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE lumaro_options Qt6::Test ${arg_LINK})
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES
        TIMEOUT 300
        LABELS ${LUMARO_TEST_KIND}
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
    if(NOT TARGET ${LUMARO_TEST_KIND}_tests)
        add_custom_target(${LUMARO_TEST_KIND}_tests)
    endif()
    add_dependencies(${LUMARO_TEST_KIND}_tests ${name})
endfunction()
