namespace {
int unused [[maybe_unused]] = 0;
}
