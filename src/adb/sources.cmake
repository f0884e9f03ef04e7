list(APPEND KORVEL_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/adbdeviceinfo.h
    ${CMAKE_CURRENT_LIST_DIR}/deviceinfo.h
    ${CMAKE_CURRENT_LIST_DIR}/adbclient.h ${CMAKE_CURRENT_LIST_DIR}/adbclient.cpp
    ${CMAKE_CURRENT_LIST_DIR}/appowned.h ${CMAKE_CURRENT_LIST_DIR}/appowned.cpp
    ${CMAKE_CURRENT_LIST_DIR}/adbpool.h ${CMAKE_CURRENT_LIST_DIR}/adbpool.cpp
    ${CMAKE_CURRENT_LIST_DIR}/devicetracker.h ${CMAKE_CURRENT_LIST_DIR}/devicetracker.cpp
    ${CMAKE_CURRENT_LIST_DIR}/adbresult.h ${CMAKE_CURRENT_LIST_DIR}/adbresult.cpp
    ${CMAKE_CURRENT_LIST_DIR}/adbjob.h ${CMAKE_CURRENT_LIST_DIR}/adbjob.cpp
    ${CMAKE_CURRENT_LIST_DIR}/adbtask.h ${CMAKE_CURRENT_LIST_DIR}/adbtask.cpp
    ${CMAKE_CURRENT_LIST_DIR}/adbworkpool.h ${CMAKE_CURRENT_LIST_DIR}/adbworkpool.cpp
)
