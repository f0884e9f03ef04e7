list(APPEND KORVEL_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/controlmsg.h ${CMAKE_CURRENT_LIST_DIR}/controlmsg.cpp
    ${CMAKE_CURRENT_LIST_DIR}/controlmsgencoder.h ${CMAKE_CURRENT_LIST_DIR}/controlmsgencoder.cpp
    ${CMAKE_CURRENT_LIST_DIR}/inputmapping.h ${CMAKE_CURRENT_LIST_DIR}/inputmapping.cpp
    ${CMAKE_CURRENT_LIST_DIR}/keymappingprofile.h ${CMAKE_CURRENT_LIST_DIR}/keymappingprofile.cpp
    ${CMAKE_CURRENT_LIST_DIR}/keymapplayer.h ${CMAKE_CURRENT_LIST_DIR}/keymapplayer.cpp
    ${CMAKE_CURRENT_LIST_DIR}/controller.h ${CMAKE_CURRENT_LIST_DIR}/controller.cpp
)
