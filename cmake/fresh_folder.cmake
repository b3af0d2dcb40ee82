# cmake -DFOLDER=<path> -P fresh_folder.cmake: makes an empty folder at the path and removes what was there before.
file(REMOVE_RECURSE "${FOLDER}")
file(MAKE_DIRECTORY "${FOLDER}")
