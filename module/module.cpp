// The module's own translation unit. The exported class families come from the libraries that
// are linked into it whole.
