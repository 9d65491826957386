// A C++ program that does nothing: built twice, the second time linked to the library.
int main() {}
