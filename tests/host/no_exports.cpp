// A library with none of the module's entry points.
extern "C" int TarnHostTestNothingHere() { return 0; }
