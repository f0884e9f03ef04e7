# korvel_add_test(NAME tst_x SOURCES a.cpp ... LABELS unit|e2e|ui [LIBS ...] [TIMEOUT s] [ARGS ...])
# Every test runs with its own HOME and XDG folders under the build tree, so settings and user files
# written by a test never touch the developer's own, and with a private adb server port.
function(korvel_add_test)
    cmake_parse_arguments(T "" "NAME;TIMEOUT" "SOURCES;LABELS;LIBS;ARGS" ${ARGN})
    qt_add_executable(${T_NAME} ${T_SOURCES})
    target_link_libraries(${T_NAME} PRIVATE Qt6::Test ${T_LIBS})
    add_test(NAME ${T_NAME} COMMAND ${T_NAME} ${T_ARGS})
    set(home ${CMAKE_BINARY_DIR}/test-home/${T_NAME})
    if(NOT T_TIMEOUT)
        set(T_TIMEOUT 300)
    endif()
    # Only tests that draw use the X server; the others run on the offscreen platform.
    set(platform "")
    if(NOT "ui" IN_LIST T_LABELS)
        set(platform ";QT_QPA_PLATFORM=offscreen")
    elseif(KORVEL_SANITIZE)
        # Mesa's driver is unloaded before the leak report, so its few allocations show up from an
        # unknown module that no suppression can name; address and UB checks stay on.
        set(platform ";ASAN_OPTIONS=detect_leaks=0")
    endif()
    set_tests_properties(${T_NAME} PROPERTIES
        LABELS "${T_LABELS}"
        TIMEOUT ${T_TIMEOUT}
        ENVIRONMENT "HOME=${home};XDG_CONFIG_HOME=${home}/.config;XDG_DATA_HOME=${home}/.local/share;XDG_RUNTIME_DIR=${home}/runtime;KORVEL_SOURCE_DIR=${CMAKE_SOURCE_DIR};KORVEL_BUILD_DIR=${CMAKE_BINARY_DIR}${platform}")
    file(MAKE_DIRECTORY ${home}/runtime)
    file(CHMOD ${home}/runtime DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
endfunction()
