# cmake -DFOLDER=<path> -P fresh_folder.cmake: an empty folder at the path, whatever was there before.
file(REMOVE_RECURSE "${FOLDER}")
file(MAKE_DIRECTORY "${FOLDER}")
