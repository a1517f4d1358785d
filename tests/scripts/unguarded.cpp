// A program without any hardening, for the check of hardening to find out.
int main() {
  return 0;
}
