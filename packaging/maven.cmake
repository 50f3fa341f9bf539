# A Maven repository in a directory: jar, sources, javadoc, and the natives of this platform.
set(version ${PROJECT_VERSION})
set(repository ${CMAKE_BINARY_DIR}/maven)
set(artifacts ${repository}/com/korvex/korvex/${version})
set(platform linux-${CMAKE_SYSTEM_PROCESSOR})
set(staging ${CMAKE_CURRENT_BINARY_DIR}/staging)

# add_archive CLASSIFIER ROOT DEPENDS...: korvex-VERSION-CLASSIFIER.jar of what lies under ROOT.
function(add_archive classifier root)
  add_custom_command(OUTPUT ${artifacts}/korvex-${version}-${classifier}.jar
    COMMAND ${Java_JAR_EXECUTABLE} --create --file ${artifacts}/korvex-${version}-${classifier}.jar
            ${jar_date} -C ${root} .
    DEPENDS ${ARGN} VERBATIM)
endfunction()
# add_natives CLASSIFIER LIBRARY: a jar with the library, where its classes look for it.
function(add_natives classifier library)
  set(root ${staging}/${classifier})
  file(MAKE_DIRECTORY ${root}/com/korvex/natives/${platform})
  set(stripped ${root}/com/korvex/natives/${platform}/$<TARGET_FILE_NAME:${library}>)
  add_custom_command(OUTPUT ${staging}/${library}
    COMMAND ${CMAKE_STRIP} -o ${stripped} $<TARGET_FILE:${library}>
    COMMAND ${CMAKE_COMMAND} -E touch ${staging}/${library}
    DEPENDS ${library} VERBATIM)
  add_archive(${classifier} ${root} ${staging}/${library})
endfunction()

file(MAKE_DIRECTORY ${artifacts} ${staging})
add_natives(${platform} korvexjni)
add_custom_target(natives DEPENDS ${artifacts}/korvex-${version}-${platform}.jar)

add_custom_command(OUTPUT ${staging}/sources
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${staging}/sources
  COMMAND ${CMAKE_COMMAND} -E make_directory ${staging}/sources/com/korvex
  COMMAND ${CMAKE_COMMAND} -E copy ${java_sources} ${staging}/sources/com/korvex
  COMMAND ${CMAKE_COMMAND} -E rename ${staging}/sources/com/korvex/module-info.java
          ${staging}/sources/module-info.java
  DEPENDS ${java_sources} VERBATIM)
add_archive(sources ${staging}/sources ${staging}/sources)
add_archive(javadoc ${javadoc} ${javadoc}/index.html)
configure_file(pom.xml.in ${artifacts}/korvex-${version}.pom @ONLY)
add_custom_command(OUTPUT ${artifacts}/korvex-${version}.jar
  COMMAND ${CMAKE_COMMAND} -E copy ${jar} ${artifacts}/korvex-${version}.jar
  DEPENDS korvex_jar ${jar} VERBATIM)
set(all ${artifacts}/korvex-${version}.jar)
foreach(classifier ${platform} sources javadoc)
  list(APPEND all ${artifacts}/korvex-${version}-${classifier}.jar)
endforeach()
if(KORVEX_DEVELOPMENT_SOLVER)
  add_natives(development-solver-${platform} korvex_solver)
  list(APPEND all ${artifacts}/korvex-${version}-development-solver-${platform}.jar)
endif()
add_custom_target(maven DEPENDS ${all})
