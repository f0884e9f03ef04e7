list(APPEND KORVEL_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/serverparams.h ${CMAKE_CURRENT_LIST_DIR}/serverparams.cpp
    ${CMAKE_CURRENT_LIST_DIR}/devicemessagereceiver.h ${CMAKE_CURRENT_LIST_DIR}/devicemessagereceiver.cpp
    ${CMAKE_CURRENT_LIST_DIR}/scrcpyserver.h ${CMAKE_CURRENT_LIST_DIR}/scrcpyserver.cpp
    ${CMAKE_CURRENT_LIST_DIR}/offlinewatch.h ${CMAKE_CURRENT_LIST_DIR}/offlinewatch.cpp
    ${CMAKE_CURRENT_LIST_DIR}/autojsprotocol.h ${CMAKE_CURRENT_LIST_DIR}/autojsprotocol.cpp
    ${CMAKE_CURRENT_LIST_DIR}/autojs.h ${CMAKE_CURRENT_LIST_DIR}/autojs.cpp
    ${CMAKE_CURRENT_LIST_DIR}/groupoperation.h ${CMAKE_CURRENT_LIST_DIR}/groupoperation.cpp
    ${CMAKE_CURRENT_LIST_DIR}/deviceactions.h ${CMAKE_CURRENT_LIST_DIR}/deviceactions.cpp
    ${CMAKE_CURRENT_LIST_DIR}/devicescreenshot.h ${CMAKE_CURRENT_LIST_DIR}/devicescreenshot.cpp
    ${CMAKE_CURRENT_LIST_DIR}/devicesession.h ${CMAKE_CURRENT_LIST_DIR}/devicesession.cpp
    ${CMAKE_CURRENT_LIST_DIR}/device.h ${CMAKE_CURRENT_LIST_DIR}/device.cpp
)
