# Compile options shared by every target of the project. Floating-point results are part
# of the contract, so contraction into fused multiply-adds and fast-math are ruled out.
function(zemcalc_set_compile_options target)
  if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    target_compile_options(${target} PRIVATE -Wall -Wextra -ffp-contract=off -fno-fast-math)
    if(ZEMCALC_WARNINGS_AS_ERRORS)
      target_compile_options(${target} PRIVATE -Werror)
    endif()
  endif()
endfunction()
