# SPDX-License-Identifier: Apache-2.0
# The example's server, under load, while every setting of its log changes.

row_soak()
{
    build release || { report soak "does not build" 1; return; }
    local failed=0 time=${NX_ENDURE_SOAK_SECONDS:-$seconds}
    python3 scripts/endure/soak.py build/release/examples/example_server --seconds "$time" --seed $RANDOM \
        >build/endure/soak.log 2>&1 || failed=1
    cat build/endure/soak.log
    report soak "$(sed -n 's/^   found: //p' build/endure/soak.log) in $time s of changes" "$failed"
}
add_row soak 2
