// Window-side functions that the counting core calls, for test programs that
// run without a window. The program itself links the real ones.
