# Shared by bench/startall and bench/app_idle: a farm of simulated phones on a private adb server,
# remembered in the first group of a private device_groups.json, and Korvel's real user interface
# (bench_app) under Xvfb. Source it after setting root, build_dir, port and farm_base_port.

home="$build_dir/bench/apphome"
farm_dir="$build_dir/bench/appfarm"

appfarm_env=(env HOME="$home" XDG_CONFIG_HOME="$home/.config" XDG_DATA_HOME="$home/.local/share"
  XDG_RUNTIME_DIR="$home/runtime" ANDROID_ADB_SERVER_PORT="$port" KORVEL_BUILD_DIR="$build_dir"
  KORVEL_PHONEFARM_DIR="$farm_dir" KORVEL_PHONEFARM_BASE_PORT="$farm_base_port"
  KORVEL_SCRCPY_SERVER="$build_dir/bench/scrcpy-server-phonesim")

appfarm_build() {
  if [ ! -f "$build_dir/build.ninja" ]; then
    KORVEL_BUILD_DIR="$build_dir" scripts/setup
  fi
  cmake --build "$build_dir" --target bench_app phonesim
  command -v xvfb-run >/dev/null || { echo "$0: xvfb-run is missing (run scripts/setup)" >&2; exit 1; }
}

appfarm_stop() {
  "${appfarm_env[@]}" "$root/scripts/phonefarm" stop >/dev/null 2>&1 || true
  "${appfarm_env[@]}" adb kill-server >/dev/null 2>&1 || true
}

# appfarm_start N: N phones, all remembered in one group; a fresh settings folder each time.
appfarm_start() {
  local count=$1
  appfarm_stop
  rm -rf "$home"
  mkdir -p "$home/.config" "$home/.local/share" "$home/runtime" "$home/Desktop/KV/DeviceGroup"
  chmod 700 "$home/runtime"
  # The file Korvel pushes; a simulated phone takes any content.
  printf 'PK\003\004 simulated scrcpy-server 3.3.1 for phonesim' >"$build_dir/bench/scrcpy-server-phonesim"
  local serials
  serials=$("${appfarm_env[@]}" "$root/scripts/phonefarm" start "$count" 2>/dev/null)
  if [ "$(printf '%s\n' "$serials" | grep -c .)" -ne "$count" ]; then
    echo "$0: the farm did not start $count phones" >&2
    return 1
  fi
  printf '%s\n' "$serials" | python3 -c '
import json, sys
serials = [line.strip() for line in sys.stdin if line.strip()]
json.dump({"device_groups": [{"name": "Rack", "devices": serials}]}, sys.stdout, indent=1)
' >"$home/Desktop/KV/DeviceGroup/device_groups.json"
  # On a real rack the phones encode on their own processors; in the idle scheduling class the
  # simulated ones take only the CPU that Korvel and the adb server leave.
  if [ "${KORVEL_BENCH_PHONES_SCHEDULING:-normal}" = idle ]; then
    cat "$farm_dir"/*/phonesim.pid | xargs -n1 chrt --idle -a -p 0 >/dev/null
  fi
}

# appfarm_run SECONDS ARGS...: bench_app under Xvfb (GLX, Mesa), stopped after SECONDS at most; its
# "key value" lines on stdout.
appfarm_run() {
  local limit=$1; shift
  "${appfarm_env[@]}" xvfb-run -a -s "-screen 0 1920x1080x24 +extension GLX" env QT_QPA_PLATFORM=xcb \
    timeout -k 10 "$limit" "$build_dir/bench/bench_app" "$@"
}

# The machine, as bench/mirror describes it.
appfarm_machine() {
  echo "- Date: $(date -Iseconds)"
  echo "- CPU: $(grep -m1 'model name' /proc/cpuinfo | cut -d: -f2 | sed 's/^ //'), $(nproc) online (nproc)"
  echo "- Memory: $(awk '/MemTotal/ { printf "%.1f GiB", $2 / 1048576 }' /proc/meminfo)"
  echo "- Load average (1, 5, 15 min) at start: $(cut -d' ' -f1-3 /proc/loadavg) (the machine is shared)"
  echo "- System: $(. /etc/os-release; echo "$PRETTY_NAME"), kernel $(uname -r)"
  echo "- Qt: $(dpkg-query -W -f='${Version}' libqt6core6 2>/dev/null)"
  echo "- Mesa: $(dpkg-query -W -f='${Version}' libgl1-mesa-dri 2>/dev/null) (llvmpipe under Xvfb)"
  echo "- adb: $(adb version | head -1)"
}

value() { # value KEY FILE
  awk -v k="$1" '$1 == k { $1 = ""; sub(/^ /, ""); print; exit }' "$2"
}
