# SPDX-License-Identifier: MIT
# What the host drives: the plug-in's object, and the bundle that it is loaded from.
glyphora_library(glyphora_shell
    SOURCES
        AppContext.cpp
        FontCheck.cpp
        GLYLanguageMgr.cpp
        GlyphoraPlugin.cpp
        Plugin.cpp
        PluginDispatch.cpp
        PluginErrors.cpp
        PluginMain.cpp
        SDKAboutPluginsHelper.cpp
        Suites.cpp
        VexFontSuite.cpp
        documentwalk.cpp
    INCLUDE "${CMAKE_CURRENT_SOURCE_DIR}"
    PUBLIC glyphora_link sdk_wrappers sdk)

glyphora_bundle(glyphora_module Glyphora
    SOURCES PluginMain.cpp
    EXPORTS "${CMAKE_CURRENT_SOURCE_DIR}/exports.map"
    LIBRARIES glyphora_shell glyphora_link sdk_wrappers orvil)
