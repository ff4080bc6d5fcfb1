# Velbrix.app: its icon, its signature, and Qt inside what is installed.
find_package(Qt6 REQUIRED COMPONENTS Svg)

function(velbrix_bundle target)
    set(resources ${PROJECT_SOURCE_DIR}/Resources)
    set(icon ${CMAKE_CURRENT_BINARY_DIR}/Velbrix.icns)
    set(pictures ${CMAKE_CURRENT_BINARY_DIR}/Velbrix.iconset)
    add_custom_command(OUTPUT ${icon}
        COMMAND $<TARGET_FILE:iconset> ${resources}/velbrix.svg ${pictures}
        COMMAND iconutil --convert icns --output ${icon} ${pictures}
        DEPENDS iconset ${resources}/velbrix.svg VERBATIM)
    set_source_files_properties(${icon} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
    target_sources(${target} PRIVATE ${icon})

    set_target_properties(${target} PROPERTIES
        MACOSX_BUNDLE ON
        OUTPUT_NAME Velbrix
        MACOSX_BUNDLE_INFO_PLIST ${resources}/Info.plist.in
        MACOSX_BUNDLE_EXECUTABLE_NAME Velbrix
        MACOSX_BUNDLE_SHORT_VERSION_STRING ${PROJECT_VERSION}
        MACOSX_BUNDLE_BUNDLE_VERSION ${PROJECT_VERSION}
        # The deployment finds Qt's frameworks where the program was linked with them.
        INSTALL_RPATH_USE_LINK_PATH ON
        # A signature covers the whole bundle, so that a change of any part has to end in signing.
        LINK_DEPENDS "${resources}/Info.plist.in;${resources}/Velbrix.entitlements;${resources}/sign-bundle;${icon}")
    # Only what the program is linked with is deployed; the plugin that draws its icons needs this.
    target_link_libraries(${target} PRIVATE Qt6::Svg)
    add_custom_command(TARGET ${target} POST_BUILD
        COMMAND ${resources}/sign-bundle $<TARGET_BUNDLE_DIR:${target}> VERBATIM)

    install(TARGETS ${target} BUNDLE DESTINATION .)
    if(Qt6_VERSION VERSION_LESS 6.5)
        qt_generate_deploy_app_script(TARGET ${target} FILENAME_VARIABLE deployment)
    else()
        qt_generate_deploy_app_script(TARGET ${target} OUTPUT_SCRIPT deployment)
    endif()
    install(SCRIPT ${deployment})
    install(CODE "execute_process(
        COMMAND \"${resources}/sign-bundle\" \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/Velbrix.app\"
        COMMAND_ERROR_IS_FATAL ANY)")
endfunction()
