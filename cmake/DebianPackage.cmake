# Run by cpack on the files of the Debian package: compresses the manual page, and adds what Debian wants of each package
# (changelog, copyright) and an SPDX file. Notices and versions of the libraries that the tool is compiled from are taken from
# the packages of this machine.
if(CPACK_GENERATOR STREQUAL "DEB")
  set(prefix ${CPACK_TEMPORARY_INSTALL_DIRECTORY}${CPACK_PACKAGING_INSTALL_PREFIX})
  set(doc ${prefix}/share/doc/lumigram)
  string(TIMESTAMP day "%a, %d %b %Y %H:%M:%S +0000" UTC)  # of SOURCE_DATE_EPOCH, if it is set
  string(TIMESTAMP created "%Y-%m-%dT%H:%M:%SZ" UTC)
  set(contact "${LUMIGRAM_OWNER} <${LUMIGRAM_EMAIL}>")

  # The changes up to this version. Debian's lines have at most 80 characters; entries begin with two spaces and an asterisk.
  execute_process(COMMAND fold -s -w 75 ${LUMIGRAM_SOURCE}/CHANGELOG.md OUTPUT_VARIABLE lines COMMAND_ERROR_IS_FATAL ANY)
  string(REPLACE ";" "\\;" lines "${lines}")
  string(REGEX REPLACE " *\n" ";" lines "${lines}")
  set(changelog "lumigram (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium\n\n")
  foreach(line IN LISTS lines)
    if(line MATCHES "^## [0-9]")
      string(FIND "${line}" "## ${CPACK_PACKAGE_VERSION}" at)
      if(at LESS 0)
        break()
      endif()
    elseif(line MATCHES "^- (.*)")
      string(APPEND changelog "  * ${CMAKE_MATCH_1}\n")
    elseif(line MATCHES "^ *([^# ].*)")
      string(APPEND changelog "    ${CMAKE_MATCH_1}\n")
    endif()
  endforeach()
  file(WRITE ${doc}/changelog "${changelog}\n -- ${contact}  ${day}\n")
  execute_process(COMMAND gzip -9n ${doc}/changelog COMMAND_ERROR_IS_FATAL ANY)

  set(copyright "${LUMIGRAM_HOMEPAGE}\nCopyright: ${LUMIGRAM_OWNER}\nLicence: ${LUMIGRAM_LICENSE}\n")
  set(spdx "SPDXVersion: SPDX-2.3
DataLicense: CC0-1.0
SPDXID: SPDXRef-DOCUMENT
DocumentName: lumigram-${CPACK_PACKAGE_VERSION}
DocumentNamespace: ${LUMIGRAM_HOMEPAGE}spdx/lumigram-${CPACK_PACKAGE_VERSION}-${created}
Creator: Organization: ${LUMIGRAM_OWNER} (${LUMIGRAM_EMAIL})
Created: ${created}
Relationship: SPDXRef-DOCUMENT DESCRIBES SPDXRef-lumigram
")
  function(describe name version license copyright)
    string(APPEND spdx "
PackageName: ${name}
SPDXID: SPDXRef-${name}
PackageVersion: ${version}
PackageDownloadLocation: NOASSERTION
FilesAnalyzed: false
PackageLicenseConcluded: ${license}
PackageLicenseDeclared: ${license}
PackageCopyrightText: <text>${copyright}</text>
")
    set(spdx "${spdx}" PARENT_SCOPE)
  endfunction()
  describe(lumigram ${CPACK_PACKAGE_VERSION} NOASSERTION "${LUMIGRAM_OWNER}")

  if(EXISTS ${prefix}/bin/lumigram)
    execute_process(COMMAND gzip -9n ${prefix}/share/man/man1/lumigram.1 COMMAND_ERROR_IS_FATAL ANY)
    foreach(package libcli11-dev nlohmann-json3-dev)
      set(notices /usr/share/doc/${package}/copyright)
      if(NOT EXISTS ${notices})
        message(FATAL_ERROR "${notices} is missing. The tool is compiled from this package, and must pass on its notices.")
      endif()
      file(READ ${notices} text)
      execute_process(COMMAND dpkg-query -W -f "\${Version}" ${package} OUTPUT_VARIABLE version COMMAND_ERROR_IS_FATAL ANY)
      string(APPEND copyright "\n\nThe tool, lumigram, is compiled from ${package} ${version}, which has these notices:\n\n${text}")
      string(REGEX MATCH "\nFiles: \\*\nCopyright: ([^\n]*)\nLicense: ([^\n]*)" all "${text}")
      set(holder "${CMAKE_MATCH_1}")
      # Debian's names of licences, and those of SPDX.
      string(REPLACE "Expat" "MIT" license "${CMAKE_MATCH_2}")
      string(REPLACE "BSD-3-clause" "BSD-3-Clause" license "${license}")
      describe(${package} ${version} ${license} "${holder}")
      string(APPEND spdx "Relationship: SPDXRef-lumigram CONTAINS SPDXRef-${package}\n")
    endforeach()
  endif()
  file(WRITE ${doc}/copyright "${copyright}")
  file(WRITE ${doc}/lumigram.spdx "${spdx}")
endif()
