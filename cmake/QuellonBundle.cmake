# The application bundle for macOS: `cmake --build build/release --target QuellonBundle` makes bin/Quellon.app, and
# QuellonSigned signs it, ad hoc unless QUELLON_SIGN_AS names an identity. Written for macOS, never run there.

set(QUELLON_SIGN_AS "-" CACHE STRING "The identity that signs the bundle; - for none")
set(iconset ${CMAKE_BINARY_DIR}/Quellon.iconset)
set(icon ${CMAKE_BINARY_DIR}/Quellon.icns)
set(sizesAndFiles)
foreach(size 16 32 128 256 512)
  math(EXPR doubled "2 * ${size}")
  list(APPEND sizesAndFiles ${size} ${iconset}/icon_${size}x${size}.png
                            ${doubled} ${iconset}/icon_${size}x${size}@2x.png)
endforeach()
file(MAKE_DIRECTORY ${iconset})
add_custom_command(OUTPUT ${icon}
                   COMMAND quellon-icons ${CMAKE_SOURCE_DIR}/data/icons/quellon.svg ${sizesAndFiles}
                   COMMAND iconutil --convert icns --output ${icon} ${iconset}
                   DEPENDS quellon-icons ${CMAKE_SOURCE_DIR}/data/icons/quellon.svg VERBATIM)

configure_file(${CMAKE_SOURCE_DIR}/data/macos/Info.plist.in ${CMAKE_BINARY_DIR}/Info.plist @ONLY)
add_executable(QuellonBundle MACOSX_BUNDLE EXCLUDE_FROM_ALL ${CMAKE_SOURCE_DIR}/src/Quellon/main.cpp ${icon})
target_link_libraries(QuellonBundle PRIVATE QuellonParts)
set_source_files_properties(${icon} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
set_target_properties(QuellonBundle PROPERTIES OUTPUT_NAME Quellon MACOSX_BUNDLE_INFO_PLIST ${CMAKE_BINARY_DIR}/Info.plist)

add_custom_target(QuellonSigned
                  COMMAND codesign --force --options runtime --sign ${QUELLON_SIGN_AS}
                          --entitlements ${CMAKE_SOURCE_DIR}/data/macos/Quellon.entitlements
                          $<TARGET_BUNDLE_DIR:QuellonBundle>
                  DEPENDS QuellonBundle VERBATIM)
