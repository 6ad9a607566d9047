# Compile options shared by every target of the project. Floating-point results are part
# of the contract, so contraction into fused multiply-adds and fast-math are ruled out.
function(zemcalc_set_compile_options target)
  if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    target_compile_options(${target} PRIVATE -Wall -Wextra -ffp-contract=off -fno-fast-math)
    # GCC 12's basic-block (SLP) vectoriser drops a double -> float -> double round trip when
    # two such results are stored side by side (o[0] = double(float(a)); o[1] = double(float(b))
    # stores a and b unrounded, at -O2 and -O3), which breaks every rule that rounds an
    # intermediate to single precision. Loop vectorisation is not affected and stays on.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      target_compile_options(${target} PRIVATE -fno-tree-slp-vectorize)
    endif()
    if(ZEMCALC_WARNINGS_AS_ERRORS)
      target_compile_options(${target} PRIVATE -Werror)
    endif()
  endif()
endfunction()
