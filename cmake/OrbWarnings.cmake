# Warnings are private to each target so that hosts building against our
# headers are not forced onto our flags.
function(orb_set_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow
                           -Wnon-virtual-dtor -Wold-style-cast -Wcast-align
                           -Wformat=2)
    if(ORB_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()
