list(APPEND KORVEL_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/adbdeviceinfo.h
    ${CMAKE_CURRENT_LIST_DIR}/deviceinfo.h
    ${CMAKE_CURRENT_LIST_DIR}/adbclient.h ${CMAKE_CURRENT_LIST_DIR}/adbclient.cpp
    ${CMAKE_CURRENT_LIST_DIR}/adbpool.h ${CMAKE_CURRENT_LIST_DIR}/adbpool.cpp
    ${CMAKE_CURRENT_LIST_DIR}/devicetracker.h ${CMAKE_CURRENT_LIST_DIR}/devicetracker.cpp
)
