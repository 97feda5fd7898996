# The C++ runtime of the mingw-w64 programs.
#
# Qt's DLLs are built against mingw's shared runtime (libstdc++-6.dll, libgcc_s_seh-1.dll,
# libwinpthread-1.dll). A program that loads Qt must use those same DLLs: with a second, static copy of
# libstdc++ in the same process, exceptions, type information and the standard streams would exist twice.
# So the window and everything else linking Qt take the shared runtime (shipped beside them), and the
# programs without Qt (the command line, the core tests) keep the static runtime: one file that starts on
# any Windows and under Wine without anything beside it.
#
# sw_use_shared_runtime(<target>) marks a program that loads Qt.
if(MINGW)
  add_link_options("$<$<NOT:$<BOOL:$<TARGET_PROPERTY:SW_SHARED_RUNTIME>>>:-static>"
                   "$<$<NOT:$<BOOL:$<TARGET_PROPERTY:SW_SHARED_RUNTIME>>>:-static-libgcc>"
                   "$<$<NOT:$<BOOL:$<TARGET_PROPERTY:SW_SHARED_RUNTIME>>>:-static-libstdc++>")
endif()

function(sw_use_shared_runtime target)
  set_target_properties(${target} PROPERTIES SW_SHARED_RUNTIME ON)
endfunction()

# sw_deploy_qt_runtime(<program>...): puts what the programs need to start beside them in the current
# binary folder, the layout the installer gives them too: the Qt DLLs, the mingw runtime DLLs, the
# platform plugins (the Windows one, and offscreen for the window tests) and the Windows style. Qt looks
# for plugins in the program's own folder, so no qt.conf or environment is needed, under Wine as on Windows.
function(sw_deploy_qt_runtime first)
  if(NOT (WIN32 AND MINGW))
    return()
  endif()
  set(runtime_dlls)
  foreach(dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    find_file(SW_RUNTIME_${dll} ${dll} PATHS /usr/lib/gcc/x86_64-w64-mingw32/12-posix /usr/x86_64-w64-mingw32/lib
              NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    list(APPEND runtime_dlls ${SW_RUNTIME_${dll}})
  endforeach()
  set(folder ${CMAKE_CURRENT_BINARY_DIR})
  set(stamp ${folder}/qt-runtime.stamp)
  add_custom_command(
    OUTPUT ${stamp}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}/platforms ${folder}/styles
    COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:Qt6::Core> $<TARGET_FILE:Qt6::Gui>
            $<TARGET_FILE:Qt6::Widgets> $<TARGET_FILE:Qt6::Test> ${runtime_dlls} ${folder}
    COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:Qt6::QWindowsIntegrationPlugin>
            $<TARGET_FILE:Qt6::QOffscreenIntegrationPlugin> ${folder}/platforms
    COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:Qt6::QWindowsVistaStylePlugin> ${folder}/styles
    COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
    DEPENDS ${runtime_dlls}
    COMMENT "Qt and the C++ runtime beside the programs in ${folder}")
  add_custom_target(${first}_qt_runtime DEPENDS ${stamp})
  foreach(program ${first} ${ARGN})
    add_dependencies(${program} ${first}_qt_runtime)
  endforeach()
endfunction()
