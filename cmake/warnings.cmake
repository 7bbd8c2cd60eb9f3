# The flags that every target of the project is built with.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
                    -Wnon-virtual-dtor -Wold-style-cast -Wcast-qual -Wformat=2 -Wundef)
if(KX_WERROR)
    add_compile_options(-Werror)
endif()
if(KX_SANITIZE)
    add_compile_options(-fsanitize=${KX_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    # The check of virtual calls needs type information that the plug-in does not export.
    add_compile_options(-fno-sanitize=vptr)
    add_link_options(-fsanitize=${KX_SANITIZE})
endif()
