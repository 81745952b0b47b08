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
        protocolhandler.cpp
        protocolhelpers.cpp
        protocolmessages.cpp
        protocolrequests.cpp
        replytext.cpp
        textutils.cpp
        transport.cpp
        xmltext.cpp
    INCLUDE "${CMAKE_CURRENT_SOURCE_DIR}"
    PUBLIC orvil platform LibXml2::LibXml2 Boost::headers)

# The schema of the protocol as a text in the program, for the tool, the tests and the benchmarks.
set(protocolSchemaFile "${CMAKE_CURRENT_SOURCE_DIR}/../resources/GlyPluginCommunication_1.0.xsd")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${protocolSchemaFile}")
file(READ "${protocolSchemaFile}" PROTOCOL_SCHEMA)
configure_file(protocolschema.cpp.in protocolschema.cpp @ONLY)
glyphora_library(glyphora_protocolschema
    SOURCES "${CMAKE_CURRENT_BINARY_DIR}/protocolschema.cpp"
    INCLUDE "${CMAKE_CURRENT_SOURCE_DIR}")

add_subdirectory(tools)
