# What every target of the project has: the language level, warnings, sanitizers. Private to the build; nothing of
# it reaches the installed targets.
add_library(qrm_build_flags INTERFACE)
target_compile_features(qrm_build_flags INTERFACE cxx_std_17)
# Files of any size, where a word has 32 bits too.
target_compile_definitions(qrm_build_flags INTERFACE _FILE_OFFSET_BITS=64)
target_compile_options(
    qrm_build_flags
    INTERFACE -Wall
              -Wextra
              -Wpedantic
              -Wshadow
              -Wconversion
              -Wnon-virtual-dtor
              -Woverloaded-virtual
              -Wcast-qual
              -Wformat=2
              $<$<BOOL:${QRM_WARNINGS_AS_ERRORS}>:-Werror>)
if(QRM_SANITIZE)
    target_compile_options(qrm_build_flags INTERFACE -fsanitize=${QRM_SANITIZE} -fno-sanitize-recover=all
                                                     -fno-omit-frame-pointer)
    target_link_options(qrm_build_flags INTERFACE -fsanitize=${QRM_SANITIZE})
endif()

# qrm_library(<target> ALIAS <QRM::Name> SOURCES <file>... HEADERS <public header>... [PUBLIC <dep>...] [PRIVATE <dep>...])
#
# A shared library with hidden visibility whose public headers are installed under the folder they have in the tree,
# so that callers include <Folder/Class.h> from the build tree and from an installation alike. The objects are a
# target of their own, <target>_objects, for tests of what the library keeps hidden.
function(qrm_library target)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "ALIAS" "SOURCES;HEADERS;PUBLIC;PRIVATE")
    string(REPLACE "QRM::" "" export_name ${ARG_ALIAS})

    add_library(${target}_objects OBJECT ${ARG_SOURCES})
    target_include_directories(${target}_objects PUBLIC ${PROJECT_SOURCE_DIR})
    target_link_libraries(${target}_objects PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE} qrm_build_flags)
    # Nobody replaces single functions of the libraries, so calls within one need no detour.
    target_compile_options(${target}_objects PRIVATE -fno-semantic-interposition)
    set_target_properties(${target}_objects PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden
                                                       VISIBILITY_INLINES_HIDDEN ON)

    add_library(${target} SHARED)
    add_library(${ARG_ALIAS} ALIAS ${target})
    target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${ARG_HEADERS})
    target_link_libraries(${target} PUBLIC ${ARG_PUBLIC} PRIVATE $<BUILD_INTERFACE:${target}_objects> ${ARG_PRIVATE}
                                                                 $<BUILD_INTERFACE:qrm_build_flags>)
    target_compile_features(${target} PUBLIC cxx_std_17)
    set_target_properties(
        ${target}
        PROPERTIES EXPORT_NAME ${export_name}
                   LINKER_LANGUAGE CXX
                   VERSION ${PROJECT_VERSION}
                   SOVERSION ${PROJECT_VERSION_MAJOR}
                   INSTALL_RPATH "${QRM_LIBRARY_RPATH}"
                   VERIFY_INTERFACE_HEADER_SETS ON)
    install(
        TARGETS ${target}
        EXPORT QRMIDOMTargets
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
endfunction()
