# Run by CPack on the installed tree before it packs it: compresses what Debian wants compressed, and gives every
# file the time of the sources, so that the same sources always make the same package.
set(tree ${CPACK_TEMPORARY_INSTALL_DIRECTORY})
execute_process(
  COMMAND find ${tree} ( -path */share/man/* -o -path */share/doc/kalivor/changelog ) -type f
          -exec gzip -9 --no-name --force {} +
  COMMAND_ERROR_IS_FATAL ANY)
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(
    COMMAND find ${tree} -exec touch --no-dereference --date=@$ENV{SOURCE_DATE_EPOCH} {} +
    COMMAND_ERROR_IS_FATAL ANY)
endif()
