# `cmake --install` into a fresh prefix puts the program, its menu entry, icon and document types in
# the XDG places, and the desktop learns from them that ".sim" and ".sme" files open with the program.
# Run as: cmake -DBUILD=<build folder> -DPREFIX=<empty folder> -P InstallTest.cmake
file(REMOVE_RECURSE "${PREFIX}")
execute_process(COMMAND ${CMAKE_COMMAND} --install "${BUILD}" --prefix "${PREFIX}"
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "install failed: ${out}")
endif()

foreach(f bin/virn-smeta bin/virn-office share/applications/virn-smeta.desktop
          share/mime/packages/virn-smeta.xml share/icons/hicolor/scalable/apps/virn-smeta.svg)
  if(NOT EXISTS "${PREFIX}/${f}")
    message(FATAL_ERROR "not installed: ${f}")
  endif()
endforeach()

execute_process(COMMAND desktop-file-validate "${PREFIX}/share/applications/virn-smeta.desktop"
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(NOT rc EQUAL 0 OR out MATCHES "error")
  message(FATAL_ERROR "the menu entry is not valid: ${out}")
endif()
file(READ "${PREFIX}/share/applications/virn-smeta.desktop" entry)
if(NOT entry MATCHES "\nExec=virn-smeta %f\n" OR NOT entry MATCHES "MimeType=application/x-virn-smeta;")
  message(FATAL_ERROR "the menu entry does not open a document with the program:\n${entry}")
endif()

# The desktop's own caches, built by the install: the file names map to the program's types, and the
# types to the menu entry.
file(READ "${PREFIX}/share/mime/globs2" globs)
foreach(pattern "application/x-virn-smeta:\\*\\.sim" "application/x-virn-smeta-6:\\*\\.sme")
  if(NOT globs MATCHES "${pattern}")
    message(FATAL_ERROR "no MIME type for ${pattern}:\n${globs}")
  endif()
endforeach()
file(READ "${PREFIX}/share/applications/mimeinfo.cache" cache)
if(NOT cache MATCHES "application/x-virn-smeta=virn-smeta.desktop;")
  message(FATAL_ERROR "the type is not bound to the program:\n${cache}")
endif()
