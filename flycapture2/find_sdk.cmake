# Looks for the camera maker's SDK: headers and library, of any release.

# Sets `header_folder` and `library` in the caller to what lies below one of the folders that follow,
# or to empty: the folder of FlyCapture2.h, and the library to link. Only these folders are looked
# at, so that an SDK elsewhere on the machine never stands in for the one that was asked for.
function(kx_find_flycapture2 header_folder library)
    set(found_header "")
    set(found_library "")
    foreach(root IN LISTS ARGN)
        if(NOT found_header)
            file(GLOB headers ${root}/include/FlyCapture2.h ${root}/include/flycapture/FlyCapture2.h)
            if(headers)
                list(GET headers 0 header)
                get_filename_component(found_header ${header} DIRECTORY)
            endif()
        endif()
        if(NOT found_library)
            # The shortest name first: the link for developers, then the soname, then a release.
            file(GLOB libraries
                 ${root}/lib/libflycapture.so* ${root}/lib64/libflycapture.so*
                 ${root}/lib/*-linux-gnu*/libflycapture.so*)
            if(CMAKE_LIBRARY_ARCHITECTURE)
                list(FILTER libraries INCLUDE REGEX
                     "/lib(64|/${CMAKE_LIBRARY_ARCHITECTURE})?/libflycapture")
            endif()
            list(SORT libraries)
            if(libraries)
                list(GET libraries 0 found_library)
            endif()
        endif()
    endforeach()
    set(${header_folder} ${found_header} PARENT_SCOPE)
    set(${library} ${found_library} PARENT_SCOPE)
endfunction()

# Decides what the plug-in is built with. `root` is where the maker's SDK has to be; empty: it is
# used if it is installed in /usr/local or /usr. Sets FLYCAPTURE2_MAKER_HEADERS and
# FLYCAPTURE2_MAKER_LIBRARY in the caller, both empty for the bundled interface and the simulation.
function(kx_choose_flycapture2 root)
    set(roots ${root})
    if(NOT roots)
        set(roots /usr/local /usr)
    endif()
    kx_find_flycapture2(headers library ${roots})
    if(root AND NOT headers)
        message(FATAL_ERROR "FLYCAPTURE2_ROOT is ${root}, but neither ${root}/include/FlyCapture2.h nor "
                            "${root}/include/flycapture/FlyCapture2.h exists")
    endif()
    if(root AND NOT library)
        message(FATAL_ERROR "FLYCAPTURE2_ROOT is ${root}, but there is no libflycapture.so in "
                            "${root}/lib, ${root}/lib64 or ${root}/lib/${CMAKE_LIBRARY_ARCHITECTURE}")
    endif()
    if(headers AND library)
        message(STATUS "FlyCapture2: the maker's SDK, ${headers} and ${library} "
                       "(set FLYCAPTURE2_ROOT to take another one)")
    else()
        set(headers "")
        set(library "")
        message(STATUS "FlyCapture2: the bundled interface and the simulated cameras "
                       "(set FLYCAPTURE2_ROOT to the folder of the maker's SDK to build with it)")
    endif()
    set(FLYCAPTURE2_MAKER_HEADERS ${headers} PARENT_SCOPE)
    set(FLYCAPTURE2_MAKER_LIBRARY ${library} PARENT_SCOPE)
endfunction()
