// Nothing but what the precompiled header of the tests needs to be made for.
int main() {}
