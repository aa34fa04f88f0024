# Resource bundles: a package's string tables and named colours are plain files, the source as well as the product.

# quillora_bundle(NAME <bundle> DIR <folder>)
# Copies the language folders <folder>/*.lproj, and <folder>/Colors.json where there is one, into <build>/share/quillora/<bundle>.bundle, where the programs in
# <build>/bin look for them, and installs them to the same place below the prefix. What is built beside it may
# depend on the target quillora_bundle_<bundle>; it is part of every full build.
function(quillora_bundle)
    cmake_parse_arguments(arg "" "NAME;DIR" "" ${ARGN})
    if(NOT arg_NAME OR NOT arg_DIR)
        message(FATAL_ERROR "quillora_bundle needs NAME and DIR")
    endif()
    cmake_path(ABSOLUTE_PATH arg_DIR BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" NORMALIZE)
    set(bundle "${PROJECT_BINARY_DIR}/share/quillora/${arg_NAME}.bundle")

    # A new language is a new folder: it joins without an edit here.
    file(GLOB tables CONFIGURE_DEPENDS RELATIVE "${arg_DIR}" "${arg_DIR}/*.lproj/*")
    if(NOT tables)
        message(FATAL_ERROR "quillora_bundle: ${arg_DIR} holds no *.lproj folder with a table")
    endif()
    file(GLOB colors CONFIGURE_DEPENDS RELATIVE "${arg_DIR}" "${arg_DIR}/Colors.json")
    list(APPEND tables ${colors})
    set(copies)
    foreach(table IN LISTS tables)
        add_custom_command(OUTPUT "${bundle}/${table}"
            COMMAND "${CMAKE_COMMAND}" -E copy "${arg_DIR}/${table}" "${bundle}/${table}"
            DEPENDS "${arg_DIR}/${table}"
            COMMENT "Copying ${arg_NAME}.bundle/${table}"
            VERBATIM)
        list(APPEND copies "${bundle}/${table}")
        cmake_path(GET table PARENT_PATH folder)
        install(FILES "${arg_DIR}/${table}"
            DESTINATION "${CMAKE_INSTALL_DATADIR}/quillora/${arg_NAME}.bundle/${folder}")
    endforeach()
    add_custom_target(quillora_bundle_${arg_NAME} ALL DEPENDS ${copies})
endfunction()

# quillora_english_table(TARGET <target> TABLE <file> NAMESPACE <namespace>)
# Builds the content of an English table into <target>, as std::string_view const <namespace>::englishTable,
# declared where it is used.
function(quillora_english_table)
    cmake_parse_arguments(arg "" "TARGET;TABLE;NAMESPACE" "" ${ARGN})
    cmake_path(ABSOLUTE_PATH arg_TABLE BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" NORMALIZE)
    set(source "${CMAKE_CURRENT_BINARY_DIR}/EnglishTable.cpp")
    set(script "${PROJECT_SOURCE_DIR}/CMake/QuilloraEnglishTable.cmake")
    add_custom_command(OUTPUT "${source}"
        COMMAND "${CMAKE_COMMAND}" "-DTABLE=${arg_TABLE}" "-DNAMESPACE=${arg_NAMESPACE}" "-DSOURCE=${source}" -P "${script}"
        DEPENDS "${arg_TABLE}" "${script}"
        COMMENT "Building ${arg_NAMESPACE}'s English table in"
        VERBATIM)
    target_sources(${arg_TARGET} PRIVATE "${source}")
endfunction()
