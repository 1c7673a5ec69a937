// The parent's own code: C++14 with GNU extensions, as the parent set; no -Wall from us, so an
// unused variable is not reported (the test fails on any warning in this file).
#if __cplusplus != 201402L
#error "the parent's standard is C++14"
#endif
int own() {
  int unused;
  return 0;
}
