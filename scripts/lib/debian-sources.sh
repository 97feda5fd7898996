# Sourced by the scripts that build libraries for mingw-w64 from Debian's source packages.
# debian_sources_apt <folder>: makes <folder> a private apt state whose sources are the machine's own
# archive with deb-src instead of deb, and sets the array apt_options to use it. The machine's apt
# configuration is left alone.
debian_sources_apt() {
  local apt_dir=$1 file
  mkdir -p "$apt_dir/lists/partial" "$apt_dir/cache/archives/partial" "$apt_dir/sources.list.d"
  : >"$apt_dir/sources.list"
  for file in /etc/apt/sources.list.d/*.sources; do
    [ -f "$file" ] || continue
    sed -e 's/^Types:.*\bdeb\b.*/Types: deb-src/' "$file" >"$apt_dir/sources.list.d/$(basename "$file")"
  done
  for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
    [ -f "$file" ] || continue
    sed -n -e 's/^deb \(.*\)/deb-src \1/p' "$file" >>"$apt_dir/sources.list"
  done
  apt_options=(
    -o "Dir::Etc::SourceList=$apt_dir/sources.list"
    -o "Dir::Etc::SourceParts=$apt_dir/sources.list.d"
    -o "Dir::State::Lists=$apt_dir/lists"
    -o "Dir::Cache=$apt_dir/cache"
    -o "Dir::Cache::pkgcache=" -o "Dir::Cache::srcpkgcache="
    -o "APT::Sandbox::User=root"
    -o "Debug::NoLocking=true"
  )
}
