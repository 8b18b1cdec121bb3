# Puts the site together in SITE: the page, the program (PROGRAM.js and PROGRAM.wasm) and the
# game's data from ROOT, as static files that any server may hand out from any path. What is
# loaded carries its content's hash in its name, so that a browser may keep it for ever.
set(LIMIT 25000000) # bytes: what the whole site may take

file(REMOVE_RECURSE ${SITE})
file(MAKE_DIRECTORY ${SITE}/data)
find_program(GZIP gzip REQUIRED)
find_program(CONVERT convert REQUIRED)

function(run)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# Sets RESULT to the first letters of the hash.
function(short_hash file result)
    file(SHA256 ${file} hash)
    string(SUBSTRING ${hash} 0 12 hash)
    set(${result} ${hash} PARENT_SCOPE)
endfunction()

# Packs FILE, and lists it for the page. No name ends with .gz: some servers would then have the
# browser unpack it, others not.
set(FILES "")
function(pack file)
    get_filename_component(name ${file} NAME)
    set(packed ${SITE}/data/${name})
    run(${GZIP} --best --no-name --stdout ${file} OUTPUT_FILE ${packed})
    short_hash(${packed} hash)
    file(SIZE ${file} size)
    file(SIZE ${packed} packed_size)
    file(RENAME ${packed} ${SITE}/data/${name}.${hash})
    list(APPEND FILES "{\"name\": \"${name}\", \"path\": \"data/${name}.${hash}\", \
\"size\": ${size}, \"packed\": ${packed_size}}")
    set(FILES ${FILES} PARENT_SCOPE)
endfunction()

# Copies FILE as NAME.HASH.EXTENSION, and sets RESULT to that.
function(copy_hashed file result)
    get_filename_component(name ${file} NAME_WE)
    get_filename_component(extension ${file} LAST_EXT)
    short_hash(${file} hash)
    configure_file(${file} ${SITE}/${name}.${hash}${extension} COPYONLY)
    set(${result} ${name}.${hash}${extension} PARENT_SCOPE)
endfunction()

file(GLOB data ${ROOT}/data/*.bmp ${ROOT}/data/*.obj ${ROOT}/data/*.txt)
foreach(file IN ITEMS ${PROGRAM}.js ${PROGRAM}.wasm LISTS data)
    pack(${file})
endforeach()
list(JOIN FILES ",\n" FILES)

copy_hashed(${ROOT}/web/page/page.js PAGE_JS)
copy_hashed(${ROOT}/web/page/page.css PAGE_CSS)

# The heading is the upper part of the title's picture.
run(${CONVERT} ${ROOT}/data/intro.bmp -crop 560x400+56+62 +repage -strip -quality 88
    ${SITE}/heading.jpg)
configure_file(${ROOT}/docs/town.jpg ${SITE}/town.jpg COPYONLY)
foreach(size 32 256)
    configure_file(${ROOT}/packaging/icons/${size}.png ${SITE}/icon-${size}.png COPYONLY)
endforeach()

set(bytes 0)
file(GLOB_RECURSE files ${SITE}/*)
foreach(file IN LISTS files)
    file(SIZE ${file} size)
    math(EXPR bytes "${bytes} + ${size}")
endforeach()
math(EXPR MEGABYTES "(${bytes} + 500000) / 1000000")
configure_file(${ROOT}/web/page/index.html ${SITE}/index.html @ONLY)
message("${SITE}: ${bytes} bytes")
if(bytes GREATER LIMIT)
    message(FATAL_ERROR "the site may take ${LIMIT} bytes")
endif()
