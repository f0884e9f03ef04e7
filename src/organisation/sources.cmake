list(APPEND KORVEL_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/jsonfile.h ${CMAKE_CURRENT_LIST_DIR}/jsonfile.cpp
    ${CMAKE_CURRENT_LIST_DIR}/jsonstore.h ${CMAKE_CURRENT_LIST_DIR}/jsonstore.cpp
    ${CMAKE_CURRENT_LIST_DIR}/keymapping.h ${CMAKE_CURRENT_LIST_DIR}/keymapping.cpp
    ${CMAKE_CURRENT_LIST_DIR}/devicesettings.h ${CMAKE_CURRENT_LIST_DIR}/devicesettings.cpp
    ${CMAKE_CURRENT_LIST_DIR}/colormanager.h ${CMAKE_CURRENT_LIST_DIR}/colormanager.cpp
    ${CMAKE_CURRENT_LIST_DIR}/commonphrase.h ${CMAKE_CURRENT_LIST_DIR}/commonphrase.cpp
    ${CMAKE_CURRENT_LIST_DIR}/phrasecategory.h ${CMAKE_CURRENT_LIST_DIR}/phrasecategory.cpp
    ${CMAKE_CURRENT_LIST_DIR}/commonphrasemanager.h ${CMAKE_CURRENT_LIST_DIR}/commonphrasemanager.cpp
)
list(APPEND KORVEL_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/groupsettings.h ${CMAKE_CURRENT_LIST_DIR}/groupsettings.cpp
    ${CMAKE_CURRENT_LIST_DIR}/devicegroup.h ${CMAKE_CURRENT_LIST_DIR}/devicegroup.cpp
)
list(APPEND KORVEL_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/devicegroupmanager.h ${CMAKE_CURRENT_LIST_DIR}/devicegroupmanager.cpp
)
list(APPEND KORVEL_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/groupreplay.h ${CMAKE_CURRENT_LIST_DIR}/groupreplay.cpp
)
list(APPEND KORVEL_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/groupcontrol.h ${CMAKE_CURRENT_LIST_DIR}/groupcontrol.cpp
    ${CMAKE_CURRENT_LIST_DIR}/groupactions.h ${CMAKE_CURRENT_LIST_DIR}/groupactions.cpp
)
