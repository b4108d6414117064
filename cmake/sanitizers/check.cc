// Links where the compiler has its sanitizers.
int main() {
  return 0;
}
