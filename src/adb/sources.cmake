list(APPEND KORVEL_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/adbdeviceinfo.h
    ${CMAKE_CURRENT_LIST_DIR}/deviceinfo.h
    ${CMAKE_CURRENT_LIST_DIR}/adbclient.h ${CMAKE_CURRENT_LIST_DIR}/adbclient.cpp
)
