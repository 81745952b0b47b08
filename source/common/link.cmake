# SPDX-License-Identifier: MIT
# The link to the font manager: protocol, exchanges, transport, and news of its library.
glyphora_library(glyphora_link
    SOURCES
        BSDNotification.cpp
        GLYController.cpp
        GLYEvent.cpp
        GLYFontEvents.cpp
        GLYFontInfo.cpp
        GLYFontRequestEvent.cpp
        GLYNotifyHandler.cpp
        Logger.cpp
        MacGLYNotifyHandler.cpp
        commandtext.cpp
        protocol.cpp
        protocoldump.cpp
        protocolfields.cpp
        protocolhelpers.cpp
        protocolmessages.cpp
        replytext.cpp
        textutils.cpp
        transport.cpp
    INCLUDE "${CMAKE_CURRENT_SOURCE_DIR}"
    PUBLIC orvil platform LibXml2::LibXml2 Boost::headers)
