(* Settings of the peer-to-peer heartbeat service and of its loggers.

   Programs read this file when they start: from the path in the environment
   variable ZUV_CLI_CFG_FILE, otherwise as p2p_config.pml from the current
   directory. A key that is missing keeps its default. *)
p2p(

    (* What every logger starts with. *)
    log(
        enable:bool(1)
        debugOn:bool(0)
        traceOn:bool(0)
        appLogOn:bool(1)
        appLogs(                        (* switches by application *)
            heartbeat:bit(1)
            discovery:bit(0)
        )
        msgLogOn:bool(0)
        msgLogs(                        (* and by message *)
            ping:bit(0)
            goodbye:bit(1)
        )
        useLogfile:bool(1)
        filename('/var/log/p2p/node (main).log')
        useDebugLogfile:bool(1)
        filenameDebug('/var/log/p2p/node (main).debug.log')
        maxNumofMsg:ulong(100)          (* lines kept before they are written *)
        maxCacheSize:ulong(32768)       (* or bytes *)
        consoleOn:bool(1)
        mlcOn:bool(0)

        (* Loggers of their own, by id: only what differs. *)
        loggers(
            heartbeat(
                debugOn:bool(1)
                filename(/var/log/p2p/heartbeat.log)
            )
            transport(
                commLogOn:bool(1)
                maxCacheSize:ulong(65536)
            )
        )
    )

    (* This node. *)
    node:service(
        id(alpha)
        title("The first node, \"alpha\"")
        motd('It\'s up: welcome (again)\\n'
             ' * please be nice to your peers')
        listen:endpoint(
            host(0.0.0.0)
            port:ushort(7400)
        )
        started:time(1253090970000000)  (* microseconds since 1970 *)
    )

    (* Times in milliseconds. *)
    timers(
        heartbeat:ulong(1000)
        timeout:ulong(3500)
        reconnect(
            first:ulong(250)
            most:ulong(30000)
            factor:double(1.5)
        )
    )

    (* Whom to greet first. *)
    peers(
        :peer(
            id(beta)
            address:endpoint(
                host(192.168.7.12)
                port:ushort(7400)
            )
            trust:float(0.95)
        )
        :peer(
            id(gamma)
            address:endpoint(
                host('fe80::1:c2%eth0')
                port:ushort(7401)
            )
            trust:float(0.5)
        )
    )

    (* Networks that may connect; the first match wins. *)
    allow(
        (192.168.0.0/16)
        (10.0.0.0/8)
        ('fe80::/10')
    )
)
