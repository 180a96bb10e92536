# Shared by the commands in the root, in .ci/, bench/ and fuzz/: source it from the project's root.

say() { printf '\n== %s\n' "$*"; }

# install_missing PACKAGE...: installs those of the Debian packages that aren't there.
install_missing() {
    local package missing=()
    for package in "$@"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0

    say "Installing ${missing[*]}"
    local sudo=()
    [ "$(id -u)" -eq 0 ] || sudo=(sudo)
    "${sudo[@]}" apt-get update -qq
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

install_build_tools() {
    install_missing g++ cmake ninja-build pkg-config qtbase5-dev libnetcdf-dev netcdf-bin libkissfft-dev \
        python3-numpy python3-netcdf4
}

# What the programs and packages of their own need that a plain build leaves out. `switches` turns them on.
switches=()
install_convert_tools() { install_missing libpwiz-dev libboost-dev zlib1g-dev; }
install_python_tools() {
    install_missing libpython3-dev pybind11-dev python3-pytest python3-pandas python3-xarray \
        python3-dask python3-distributed python3-zarr python3-matplotlib python3-pip python3-venv
}
install_view_tools() { install_missing libqcustomplot-dev libqt5svg5-dev; }
configure_switches() { switches=(-DAIA_CONVERT=ON -DAIA_PYTHON=ON -DAIA_VIEW=ON); } # all of them

# build PRESET [TARGET...], with the switches
build() {
    local preset=$1
    shift
    say "Building ($preset)"
    cmake --preset "$preset" --log-level=NOTICE ${switches[@]+"${switches[@]}"}
    cmake --build --preset "$preset" ${1:+--target "$@"}
}
