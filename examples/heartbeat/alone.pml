(* A peer whose only neighbour is itself: enough to see the service at work. *)
p2p(
    log(useLogfile:bool(0) consoleOn:bool(1))
    node(id(alone) listen:endpoint(host(127.0.0.1) port:ushort(47400)))
    timers(heartbeat:ulong(100) timeout:ulong(1000))
    peers(:peer(id(alone) address:endpoint(host(127.0.0.1) port:ushort(47400))))
)
