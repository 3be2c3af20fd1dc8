// Linked with the XML libraries, and done: what any program that uses them starts with.
int main() {}
