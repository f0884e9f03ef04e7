# The adb daemon side of phonesim. Included by tools/phonesim/CMakeLists.txt.
list(APPEND PHONESIM_ADBD_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/adbmessage.h ${CMAKE_CURRENT_LIST_DIR}/adbmessage.cpp
    ${CMAKE_CURRENT_LIST_DIR}/adbstream.h ${CMAKE_CURRENT_LIST_DIR}/adbstream.cpp
    ${CMAKE_CURRENT_LIST_DIR}/adbconnection.h ${CMAKE_CURRENT_LIST_DIR}/adbconnection.cpp
    ${CMAKE_CURRENT_LIST_DIR}/adbdaemon.h ${CMAKE_CURRENT_LIST_DIR}/adbdaemon.cpp
    ${CMAKE_CURRENT_LIST_DIR}/reversetable.h ${CMAKE_CURRENT_LIST_DIR}/reversetable.cpp
    ${CMAKE_CURRENT_LIST_DIR}/shellpacket.h ${CMAKE_CURRENT_LIST_DIR}/shellpacket.cpp
    ${CMAKE_CURRENT_LIST_DIR}/shellline.h ${CMAKE_CURRENT_LIST_DIR}/shellline.cpp
    ${CMAKE_CURRENT_LIST_DIR}/shellcommands.h ${CMAKE_CURRENT_LIST_DIR}/shellcommands.cpp
    ${CMAKE_CURRENT_LIST_DIR}/shellsession.h ${CMAKE_CURRENT_LIST_DIR}/shellsession.cpp
    ${CMAKE_CURRENT_LIST_DIR}/syncsession.h ${CMAKE_CURRENT_LIST_DIR}/syncsession.cpp
    ${CMAKE_CURRENT_LIST_DIR}/packageinstallsession.h ${CMAKE_CURRENT_LIST_DIR}/packageinstallsession.cpp
    ${CMAKE_CURRENT_LIST_DIR}/phoneproperties.h ${CMAKE_CURRENT_LIST_DIR}/phoneproperties.cpp
    ${CMAKE_CURRENT_LIST_DIR}/phoneadmin.h ${CMAKE_CURRENT_LIST_DIR}/phoneadmin.cpp
)
