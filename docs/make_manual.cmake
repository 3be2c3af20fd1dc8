# Makes the HTML manual: cmake -DINPUT=... -DSOURCES=... -DDOXYGEN=... -P make_manual.cmake
#
# Doxygen shows the folders that it reads from, so all that it reads is laid out in one
# first, as it is to be seen: the headers as they are included, and the pages beside them.
file(REMOVE_RECURSE ${INPUT} ${INPUT}/../html)
file(COPY ${SOURCES}/include/tessel ${SOURCES}/standin/include/tessel
  DESTINATION ${INPUT} FILES_MATCHING PATTERN *.h)
foreach(page docs/start docs/manual docs/howto docs/comparison SECURITY)
  file(READ ${SOURCES}/${page}.md text)
  cmake_path(GET page FILENAME name)
  # Pages that are in the repository alone are named there without a link.
  string(REGEX REPLACE "\\]\\(\\.\\./" "](" text "${text}")
  string(REGEX REPLACE "\\[([^]]*)\\]\\(benchmarks\\.md\\)" "\\1" text "${text}")
  file(WRITE ${INPUT}/${name}.md "${text}")
endforeach()
file(COPY ${STATUS} DESTINATION ${INPUT})
execute_process(COMMAND ${DOXYGEN} Doxyfile WORKING_DIRECTORY ${INPUT}/.. COMMAND_ERROR_IS_FATAL ANY)
