# Helpers shared by the CMakeLists of this project.

# cartulon_sources(VAR DIR): every .cpp below DIR, picked up again when files
# are added, so that adding a unit never means editing a build file.
function(cartulon_sources var dir)
  file(GLOB_RECURSE found CONFIGURE_DEPENDS "${dir}/*.cpp")
  set(${var} ${found} PARENT_SCOPE)
endfunction()

function(cartulon_warnings target)
  target_compile_options(${target} PRIVATE ${CARTULON_WARNINGS})
endfunction()

# cartulon_stage(TARGET): copy a program into the staged program folder after
# each build, so build/Cartulon is always runnable as it stands.
function(cartulon_stage target)
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:${target}> "${CARTULON_STAGE}/"
    VERBATIM)
  install(TARGETS ${target} RUNTIME DESTINATION ${CARTULON_INSTALL_DIR})
endfunction()
