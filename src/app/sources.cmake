list(APPEND KORVEL_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/appinfo.h
    ${CMAKE_CURRENT_LIST_DIR}/appconfig.h ${CMAKE_CURRENT_LIST_DIR}/appconfig.cpp
    ${CMAKE_CURRENT_LIST_DIR}/appstartup.h ${CMAKE_CURRENT_LIST_DIR}/appstartup.cpp
    ${CMAKE_CURRENT_LIST_DIR}/quitonsignal.h
)
if(UNIX)
    list(APPEND KORVEL_SOURCES ${CMAKE_CURRENT_LIST_DIR}/quitonsignal_unix.cpp)
else()
    list(APPEND KORVEL_SOURCES ${CMAKE_CURRENT_LIST_DIR}/quitonsignal_other.cpp)
endif()
