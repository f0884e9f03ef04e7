list(APPEND KORVEL_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/packetsink.h
    ${CMAKE_CURRENT_LIST_DIR}/packetframing.h
    ${CMAKE_CURRENT_LIST_DIR}/packetframing.cpp
    ${CMAKE_CURRENT_LIST_DIR}/videodemuxer.h
    ${CMAKE_CURRENT_LIST_DIR}/videodemuxer.cpp
    ${CMAKE_CURRENT_LIST_DIR}/videodecoder.h
    ${CMAKE_CURRENT_LIST_DIR}/videodecoder.cpp
    ${CMAKE_CURRENT_LIST_DIR}/screenshotwriter.h
    ${CMAKE_CURRENT_LIST_DIR}/screenshotwriter.cpp
    ${CMAKE_CURRENT_LIST_DIR}/yuvframe.h
    ${CMAKE_CURRENT_LIST_DIR}/yuvfboitem.h
    ${CMAKE_CURRENT_LIST_DIR}/yuvfboitem.cpp
    ${CMAKE_CURRENT_LIST_DIR}/yuvfborenderer.h
    ${CMAKE_CURRENT_LIST_DIR}/yuvfborenderer.cpp
)
